#pragma once

/// libzel_effects: portrait effects on pixel buffers.
///
/// Pictures. A picture is a pointer to 8-bit RGBA pixels (byte 0 red, 1 green, 2 blue, 3 alpha), a width and
/// a height in pixels: rows top to bottom, tightly packed, 4 * width bytes a row, so 4 * width * height bytes
/// in all. A plane (mask, luma) holds one byte a pixel, width bytes a row. Operations work in place; a second
/// buffer is read-only unless its operation says otherwise. Alpha is carried, not interpreted: colour
/// operations change bytes 0 to 2 and leave byte 3.
///
/// Ownership. Every buffer passed in stays the caller's, and nothing is kept after a call. What
/// StbImageUtil, createNoise and ReadFile2String return is the caller's and is released with free().
///
/// Bad input. A null picture, a width or height below 1, a missing file or asset: a bool operation returns
/// false and a void operation returns with the picture untouched, unless its declaration says otherwise;
/// a line on standard error says why where one is documented. Nothing is thrown but a failing allocation
/// (std::bad_alloc), which may leave the picture half done.
///
/// Threads. Operations may be called from any thread, at the same time, and return when the result lies in
/// the buffer. The same call on the same pixels gives the same bytes on any number of processors, but for
/// what is documented to draw on rand().
///
/// Face indices. An index that is negative or not below the face count selects face 0.

#include <cstdlib>
#include <cstring>
#include <string>

#include "interFacePoint.h"
#include "zel_export.h"
#include "zel_records.h"

namespace ZelImageCore {

/// The presets of CScenarioBeauty. Their meaning is told at CScenarioBeauty::Run.
enum eScenarioType : int {
    eScenario1 = 1,
    eScenario2 = 2,
    eScenario3 = 3,
    eScenario4 = 4,
    eScenario5 = 5,
    eScenario6 = 6,
    eScenario7 = 7,
};

/// Simple filters that know no face. All static.
class ZEL_EXPORT TableBase {
public:
    TableBase& operator=(const TableBase&);
    TableBase& operator=(TableBase&&);

    /// Mixes `source` into a region of `image`, by a mask.
    /// @param image   the picture, changed inside the region
    /// @param width   of image and source, in pixels
    /// @param height  of image and source, in pixels; what of the region overhangs the picture stays
    ///                untouched
    /// @param source  RGBA, of the picture's size; read only
    /// @param mask    params[2] by params[3] pixels of four bytes, of which byte 0 counts (0 keeps the
    ///                picture, 255 takes the source at strength 1); it is blurred in place
    /// @param params  six floats: left, top, width and height of the region and the radius of the mask's
    ///                blur, all in pixels and truncated to integers, then the strength, usually 0..1: at 1
    ///                the mask alone decides, at 0 nothing changes
    static void ImageProcessWithAlphaMix(unsigned char* image, int width, int height, unsigned char* source,
                                         unsigned char* mask, float* params);

    /// Brightness, contrast, saturation and a logarithmic lift, in this order; 0 is neutral in each.
    /// @param image   the picture, changed in place
    /// @param width   in pixels
    /// @param height  in pixels
    /// @param params  `count` floats: brightness -100..100, contrast -100..100, saturation in percent of
    ///                change (truncated; -100 is grey), lift in tenths (truncated; read only where count is
    ///                exactly 4)
    /// @param count   floats in params; below 3 nothing happens
    static void ImageProcessWithColorMixing(unsigned char* image, int width, int height, float* params,
                                            int count);

    /// Blurs bytes 0 to 2 with a triangular kernel (a stack blur).
    /// @param image   the picture, changed in place
    /// @param width   in pixels
    /// @param height  in pixels
    /// @param radius  in pixels: the kernel has a half-width of radius + 1. Above a quarter of the shorter
    ///                side that limit is taken; 0 and below change nothing
    static void ImageProcessWithGaussBlur(unsigned char* image, int width, int height, int radius);

    /// Replaces blocks of pixels by their mean; blocks at the right and lower border are cut off there.
    /// @param image      the picture, changed in place
    /// @param width      in pixels
    /// @param height     in pixels
    /// @param blockSize  side of a block in pixels; below 2 acts as 2
    static void ImageProcessWithMosaic(unsigned char* image, int width, int height, int blockSize);

    /// Unsharp mask against a blurred copy that the caller made.
    /// @param image    the picture, changed in place
    /// @param width    of the picture and of its copy, in pixels
    /// @param height   of the picture and of its copy, in pixels
    /// @param amount   usually -1..1: 0 leaves the picture; above 0 sharpens (four times the amount is
    ///                 added); below 0 moves the picture towards the blurred copy, which -1 reaches
    /// @param blurred  address of the blurred copy; must not be null: without it the picture stays as it is.
    ///                 Where *blurred is null the picture stays as well
    static void ImageProcessWithSharp(unsigned char* image, int width, int height, float amount,
                                      unsigned char** blurred);
};

/// Skin, eyes and repair. All static. A `void* points` is a zellab::CInterFacePoint* with the picture's
/// faces; null, no face, or a face that was counted but not added leaves the picture as it is.
class ZEL_EXPORT TableSkin {
public:
    TableSkin& operator=(const TableSkin&);
    TableSkin& operator=(TableSkin&&);

    /// Clears the eyes of one face: iris ring, whites and contrast, inside soft masks. The skin operations
    /// call it with 100, 0, 0, 40, 70, 0, 40, 1, 0.4, 1, which is a good start. The first seven floats are
    /// percentages, usually 0..100. An eye whose iris is not found stays as it is, with a line in the log.
    /// @param image          the picture, changed in place
    /// @param width          in pixels
    /// @param height         in pixels
    /// @param points         the faces, as told above
    /// @param faceIndex      which of them
    /// @param overallGain    share of the result, percent: 0 changes nothing, 100 takes all of it
    /// @param bandOffset     inner edge of the iris ring, percent: 0 lightens from a tenth of the iris's
    ///                       radius outwards, larger values keep to the rim, at 100 the ring is left out
    /// @param reservedShade  never read
    /// @param highlightGain  percent, of which a third is added to the brightness that whites may reach
    /// @param whiteGain      share by which whites are lifted towards it, percent; 0 leaves them
    /// @param darkTolerance  how dark a white may be and still be lifted, percent: 0 lifts the lightest alone
    /// @param irisGain       percent by which the iris ring is lightened, -100..100; below 0 darkens
    /// @param filterRadius   exponent of the smoothing of the iris, usually 1
    /// @param filterEps      variance that counts as smooth there, as a multiple of 65025 to the exponent,
    ///                       0.4
    /// @param filterScale    what is left of smooth variation: 0 nothing, 1 (usual) all of it, above 1 more
    static void ImageProcessWithAutoEyeBright(unsigned char* image, int width, int height, void* points,
                                              int faceIndex, float overallGain, float bandOffset,
                                              float reservedShade, float highlightGain, float whiteGain,
                                              float darkTolerance, float irisGain, float filterRadius,
                                              float filterEps, float filterScale);

    /// Finds flecks on one face and repairs them. Nothing happens, also to skinMask, for a null picture or
    /// points, a rectangle without size or a face without points.
    /// @param image      the picture, changed in place
    /// @param skinMask   plane of the picture's size, or null: nothing is sought where it is 0, and it
    ///                   receives how much each of its other pixels is skin, 0..255
    /// @param width      in pixels
    /// @param height     in pixels
    /// @param faceRect   the face in pixels; not changed
    /// @param points     the faces, as told above
    /// @param faceIndex  which of them
    /// @param method     0: fleck cleaner, works on 280 pixels and suits moles and spots; 1: fine fleck
    ///                   cleaner, works on 640 pixels and suits small blemishes; others only fill skinMask
    static void ImageProcessWithAutoFaceInpaint(unsigned char* image, unsigned char* skinMask, int width,
                                                int height, CGRect& faceRect, void* points, int faceIndex,
                                                int method);

    /// Lightens the shadows under both eyes of one face.
    /// @param image      the picture, changed in place
    /// @param width      in pixels
    /// @param height     in pixels
    /// @param faceRect   the face in pixels; limited to the picture in place (not where strength is 0 or
    ///                   below). A rectangle smaller than what lies under the eyes stops the work, with a
    ///                   line in the log
    /// @param points     the faces, as told above
    /// @param faceIndex  which of them
    /// @param strength   0..1; 0, below and NaN change nothing
    /// @param method     0: the usual form, at 0.4 in the inner part of the shadow; 1: at full strength
    ///                   there, with shapes of its own; others do nothing
    static void ImageProcessWithAutoRemoveBlackCircle(unsigned char* image, int width, int height,
                                                      CGRect& faceRect, void* points, int faceIndex,
                                                      float strength, int method);

    /// Brightens by the detail that a blur removes (high pass, colour burn).
    /// @param image   the picture, changed in place
    /// @param width   in pixels
    /// @param height  in pixels
    /// @param radius  of the blur in pixels, limited as in TableBase::ImageProcessWithGaussBlur
    /// @param level   0..10 in tenths of the effect, limited to that range; 0 leaves the picture as it is
    /// @return false for a null picture or a size below 1, true otherwise
    static bool ImageProcessWithBright(unsigned char* image, int width, int height, int radius, int level);

    /// Fills what a mask marks from the rest of the picture.
    /// @param image   the picture, changed in place
    /// @param width   in pixels
    /// @param height  in pixels
    /// @param mask    plane of the picture's size, not 0 in the hole; null or all 0 changes nothing
    /// @param method  1: gradient engine (Poisson), which suits faces and slopes; any other value: patch
    ///                engine, which suits texture and draws on rand()
    static void ImageProcessWithInpaint(unsigned char* image, int width, int height, unsigned char* mask,
                                        int method);

    /// Smooths and tones the skin of the first face: levels, clear eyes, smoothed lightness, a tone.
    /// @param image     the picture, changed in place
    /// @param width     in pixels
    /// @param height    in pixels
    /// @param strength  0..1, share of the smoothed picture; levels and eyes are always at full strength. NaN
    ///                  leaves the picture
    /// @param faceInfo  the faces; null or no face leaves out what is done to faces
    /// @param mask      plane of the picture's size that weighs the result (255: all of it, 0: none), or null
    static void ImageProcessWithQornSkinRetouch(unsigned char* image, int width, int height, float strength,
                                                ImageCoreFaceInfo* faceInfo, unsigned char* mask);

    /// Brightens the picture and the eyes of its first face, and turns it warm or cool.
    /// @param image     the picture, changed in place
    /// @param width     in pixels
    /// @param height    in pixels
    /// @param params    two floats. Brightness level, usually 0..10, truncated: the middle grey 130 becomes
    ///                  137 + 5 * level, so that 0 brightens slightly too. Strength of the tone, limited to
    ///                  0..1: 0.5 is neutral, above warmer, below cooler. NaN leaves the picture
    /// @param faceInfo  the faces; null or no face leaves out the eyes. Not read where prepared is given
    /// @param mask      as in ImageProcessWithQornSkinRetouch, or null
    /// @param prepared  RGBA picture of the same size to start from in place of levels and eyes, or null
    static void ImageProcessWithQornSkinWhitening(unsigned char* image, int width, int height, float* params,
                                                  ImageCoreFaceInfo* faceInfo, unsigned char* mask,
                                                  unsigned char* prepared);

    /// The same as ImageProcessWithBright without its result.
    /// @param image   the picture, changed in place
    /// @param width   in pixels
    /// @param height  in pixels
    /// @param radius  of the blur in pixels, limited as in TableBase::ImageProcessWithGaussBlur
    /// @param level   0..10 in tenths of the effect, limited to that range; 0 leaves the picture as it is
    static void ImageProcessWithMascara(unsigned char* image, int width, int height, int radius, int level);

    /// Smoothing that keeps detail: shadows move to a toned copy by a soft-light mask of the blurred green.
    /// @param image   the picture, changed in place
    /// @param width   in pixels
    /// @param height  in pixels
    /// @param radius  of the blur in pixels, limited as in TableBase::ImageProcessWithGaussBlur; at 0 the
    ///                tone alone is applied
    static void ImageProcessWithNatureSmooth(unsigned char* image, int width, int height, int radius);

    /// Lightens dark circles where the host says they are.
    /// @param image    the picture, changed in place
    /// @param width    in pixels
    /// @param height   in pixels
    /// @param mask     plane of the picture's size, not 0 on the circles; read where useMask is not 0
    /// @param rect     four floats x, y, width, height in pixels, rounded; read where useMask is 0. Null, NaN
    ///                 or a million and above change nothing
    /// @param useMask  not 0: by the mask; 0: by the rectangle
    static void ImageProcessWithRemoveBlackCircle(unsigned char* image, int width, int height,
                                                  unsigned char* mask, float* rect, int useMask);

    /// Smooths the skin colours of the whole picture, and brightens and tones everything.
    /// @param image   the picture, changed in place
    /// @param width   in pixels
    /// @param height  in pixels
    /// @param params  four floats; NaN leaves the picture. Radius of the smoothing in pixels, truncated: 0
    ///                and below leave the tone alone. Mix 0..10, share of the smoothed picture in tenths.
    ///                Brightness level, usually 0..10, truncated: the middle grey 130 becomes 137 + 5 *
    ///                level. Tone, usually -1..1: 0 is neutral, above warmer, below cooler
    /// @param unused  never read
    static void ImageProcessWithSkin(unsigned char* image, int width, int height, float* params,
                                     char* unused);

    /// Brightens and tints through a colour table made from a neutral one.
    /// @param image         the picture, changed in place
    /// @param width         in pixels
    /// @param height        in pixels
    /// @param strength      tone, limited to 0..1: 0.5 is neutral, above warmer, below cooler. NaN leaves the
    ///                      picture
    /// @param level         brightness level, usually 0..10: the middle grey 130 becomes 137 + 4 * level,
    ///                      truncated, so that 0 brightens slightly too. NaN leaves the picture
    /// @param neutralTable  RGBA, laid out as the lookup of CScenarioBeauty::Run; read only
    /// @param tableWidth    in pixels, 64
    /// @param tableHeight   in pixels, 64; a smaller table than 64 by 64 changes nothing
    static void ImageProcessWithSkinColor(unsigned char* image, int width, int height, float strength,
                                          float level, const unsigned char* neutralTable, int tableWidth,
                                          int tableHeight);

    /// Smooths the wrinkles that a mask marks. A picture with a shorter side below 20 stays as it is in every
    /// method but 2.
    /// @param image     the picture, changed in place
    /// @param width     in pixels
    /// @param height    in pixels
    /// @param mask      plane of the picture's size: 255 on the wrinkles; method 2 takes every value but 0
    /// @param strength  percentage 0..100 of the repair; 0 changes nothing. Not read by method 2, which works
    ///                  at a strength of its own
    /// @param method    2: one box around all marks, found on 720 pixels; any other value (0 is usual):
    ///                  blocks that grow with the picture, each repaired from its quietest neighbour
    static void ImageProcessWithWrinkleCleaner(unsigned char* image, int width, int height,
                                               unsigned char* mask, int strength, int method);
};

/// Reads image files into RGBA buffers. All static. A result is released with free(); null on failure, with
/// a line in the log. Pixels come as the file stores them: the orientation that a camera noted (EXIF) is
/// neither applied nor told.
class ZEL_EXPORT StbImageUtil {
public:
    StbImageUtil& operator=(const StbImageUtil&);
    StbImageUtil& operator=(StbImageUtil&&);

    /// Decodes a file (PNG, JPEG, BMP, GIF, TGA, PSD, HDR, PIC, PNM).
    /// @param path           of a regular file
    /// @param width          receives the decoded width in pixels, also where maxSize reduces the result: a
    ///                       caller that sets maxSize works out the reduced size (longer side = maxSize, the
    ///                       other side * maxSize / longer side in integers) and passes keepAlpha true
    /// @param height         receives the decoded height in pixels, likewise
    /// @param channels       receives the channels in the file, 1..4; the result always has four
    /// @param scrambled      the file carries a four-byte head and scrambled bytes
    /// @param keepAlpha      true keeps the alpha of the file; false flattens the picture onto white, alpha
    ///                       255
    /// @param maxSize        limit of the longer side in pixels; 0 and below: none
    /// @param reserved       not read
    /// @param unusedContext  not read
    /// @return RGBA pixels for free(), or null
    static unsigned char* loadImageFromFile(const std::string& path, int& width, int& height, int& channels,
                                            bool scrambled, bool keepAlpha, int maxSize, bool reserved,
                                            void* unusedContext);

    /// The same from memory, where nothing is ever scrambled.
    /// @param data       the bytes of an image file; read only
    /// @param size       how many
    /// @param width      receives the decoded width, as in loadImageFromFile
    /// @param height     receives the decoded height, as in loadImageFromFile
    /// @param channels   receives the channels in the file, 1..4
    /// @param keepAlpha  as in loadImageFromFile
    /// @param maxSize    as in loadImageFromFile
    /// @param reserved   not read
    /// @return RGBA pixels for free(), or null
    static unsigned char* loadImageFromMemory(unsigned char* data, int size, int& width, int& height,
                                              int& channels, bool keepAlpha, int maxSize, bool reserved);

private:
    static bool IsEncryptImageWithHead(char* data, unsigned long size);
};

/// One-call presets. Holds no state.
class ZEL_EXPORT CScenarioBeauty {
public:
    CScenarioBeauty();
    ~CScenarioBeauty();
    CScenarioBeauty& operator=(const CScenarioBeauty&);

    /// Runs one recipe on the picture.
    ///
    /// | type    | recipe                                                                   |
    /// |---------|--------------------------------------------------------------------------|
    /// | 1, 3, 4 | colour lookup, then the edge-aware sharpener                             |
    /// | 2       | slims the first face, enlarges its eyes, removes dark circles, smooths   |
    /// |         | the skin, then the colour lookup                                         |
    /// | 5, 7    | colour lookup, then an unsharp mask                                      |
    /// | 6       | removes haze (levels per channel), no lookup                             |
    /// | others  | nothing                                                                  |
    ///
    /// @param image     the picture, changed in place
    /// @param width     in pixels
    /// @param height    in pixels
    /// @param type      the recipe
    /// @param alpha     strength, limited to 0..1 (NaN acts as 0). In type 2 the reshaping is always full:
    ///                  below 1 alpha mixes skin and colour against the reshaped picture, at 1 only the
    ///                  lookup is applied
    /// @param lookup    colour cube of 16 steps an axis as a 64 by 64 RGBA picture: 4 by 4 tiles of 16 by 16;
    ///                  red along x and green along y within a tile, blue picks the tile, row by row. Not
    ///                  read by type 6
    /// @param faceInfo  read by type 2 only; null or no face leaves out the face steps
    /// @return false where alpha is 0 and type is not 2 (nothing is done), true otherwise
    bool Run(unsigned char* image, int width, int height, eScenarioType type, float alpha,
             unsigned char* lookup, ImageCoreFaceInfo* faceInfo);

private:
    void Defog(unsigned char* image, int width, int height);
    void PersonBeautyFilter(unsigned char* image, int width, int height, ImageCoreFaceInfo* faceInfo,
                            unsigned char* blendSource);
};

}  // namespace ZelImageCore

/// Narrows a face. All static.
class ZEL_EXPORT CFaceSlimRender {
public:
    CFaceSlimRender& operator=(const CFaceSlimRender&);
    CFaceSlimRender& operator=(CFaceSlimRender&&);

    /// Narrows one face by its landmarks, with the factors 1.0, 0.9, 0.6, 0.2, 0.4, 0.34, -0.5 of the long
    /// form.
    /// @param image      the picture, changed in place
    /// @param width      in pixels
    /// @param height     in pixels
    /// @param points     the faces
    /// @param strength   overall strength, usually 0..1; the chin does not follow it
    /// @param faceIndex  which of them
    /// @return always true, also where nothing was to do: bad input and no face leave the picture as it is
    static bool autoSlimFace(unsigned char* image, int width, int height, zellab::CInterFacePoint* points,
                             float strength, int faceIndex);

    /// The same with all factors given; defaults are those of the short form.
    /// @param image         the picture, changed in place
    /// @param width         in pixels
    /// @param height        in pixels
    /// @param points        the faces
    /// @param strength      overall strength, usually 0..1; the chin does not follow it
    /// @param outerWeight   0..1, share of the warp in the ring outside the contour, 1.0
    /// @param middleWeight  0..1, in the ring next to the contour, 0.9
    /// @param innerWeight   0..1, on the contour itself, 0.6
    /// @param upperFactor   usually 0..1, pull of the cheeks, 0.2
    /// @param lowerFactor   usually 0..1, pull of the lower cheeks, 0.4
    /// @param jawFactor     usually 0..1, pull of the jaw, 0.34
    /// @param chinFactor    usually -1..1, pull of the chin, -0.5; negative moves it outwards
    /// @param faceIndex     which of the faces
    /// @return always true, also where nothing was to do
    static bool autoSlimFace(unsigned char* image, int width, int height, zellab::CInterFacePoint* points,
                             float strength, float outerWeight, float middleWeight, float innerWeight,
                             float upperFactor, float lowerFactor, float jawFactor, float chinFactor,
                             int faceIndex);

    /// Pushes the picture from start to end with a round brush.
    /// @param image     the picture, changed in place
    /// @param width     in pixels
    /// @param height    in pixels
    /// @param startX    0..1, fraction of the width
    /// @param startY    0..1, fraction of the height
    /// @param endX      0..1, fraction of the width
    /// @param endY      0..1, fraction of the height
    /// @param radius    of the brush, a fraction of the width, also of tall pictures
    /// @param strength  percentage, usually 0..100; between 0 and 1 nothing moves. Negative: a pinch at the
    ///                  end
    /// @return false for a null picture, a size below 1 or a radius below 2 pixels, with a line in the log
    static bool slimFace(unsigned char* image, int width, int height, float startX, float startY, float endX,
                         float endY, float radius, float strength);
};

/// Enlarges eyes. All static.
class ZEL_EXPORT CEyeZoomRender {
public:
    CEyeZoomRender& operator=(const CEyeZoomRender&);
    CEyeZoomRender& operator=(CEyeZoomRender&&);

    /// Enlarges both eyes of one face by its landmarks, with the factors 0.9, 0.2, 1.0 of the long form.
    /// @param image      the picture, changed in place
    /// @param width      in pixels
    /// @param height     in pixels
    /// @param points     the faces
    /// @param strength   overall strength, usually 0..1; negative shrinks
    /// @param faceIndex  which of them
    /// @return always true, also where nothing was to do: bad input and no face leave the picture as it is
    static bool autoZoomEye(unsigned char* image, int width, int height, zellab::CInterFacePoint* points,
                            float strength, int faceIndex);

    /// The same with all factors given; defaults are those of the short form.
    /// @param image          the picture, changed in place
    /// @param width          in pixels
    /// @param height         in pixels
    /// @param points         the faces
    /// @param strength       overall strength, usually 0..1; negative shrinks
    /// @param eyeRatioLimit  ratio of both eyes' width to the face's at which nothing grows, 0.9; wider eyes
    ///                       shrink
    /// @param zoomFactor     scale of the zoom, usually 0..1, 0.2
    /// @param ringScale      distance of the ring that stays fixed, from the outline outwards, as a fraction
    ///                       of the outline's distance from the eye's centre, 1.0
    /// @param faceIndex      which of the faces
    /// @return always true, also where nothing was to do
    static bool autoZoomEye(unsigned char* image, int width, int height, zellab::CInterFacePoint* points,
                            float strength, float eyeRatioLimit, float zoomFactor, float ringScale,
                            int faceIndex);

    /// Bulges the picture around one point.
    /// @param image     the picture, changed in place
    /// @param width     in pixels
    /// @param height    in pixels
    /// @param center    0..1, fractions of width and height
    /// @param radius    fraction of the width, also of tall pictures
    /// @param strength  percentage, usually -100..100; negative shrinks
    /// @return false for a null picture, a size below 1 or a radius below 2 pixels, with a line in the log
    static bool zoomEye(unsigned char* image, int width, int height, zellab::Vector2f center, float radius,
                        int strength);
};

namespace DefocusCore {

struct DepthEstimatorHandle;
struct DefocusInternals;

/// Depth of field from one picture. The one class with state: not for concurrent calls on one object.
///
/// Calling order: constructor, setResourcePath, Init, SetBokehImage, DepthEstimate, optionally
/// SetHairMaskData, Run as often as wanted, optionally MixWidthMask, Release, destructor.
/// A copy shares the estimator, the shape image and the depth plane with its original: keep one instance.
class ZEL_EXPORT ZelDepthDefocusRender {
public:
    ZelDepthDefocusRender();
    ZelDepthDefocusRender(const ZelDepthDefocusRender& other);
    ~ZelDepthDefocusRender();
    ZelDepthDefocusRender& operator=(const ZelDepthDefocusRender& other);

    /// Makes the depth engine and loads the network from the model directory.
    /// @param reserved  not read
    /// @return whether the network was loaded; false, with a line in the log, without the inference module
    bool Init(bool reserved);

    /// Frees the depth engine; a later Init makes it anew.
    void Release();

    /// Tells where the files lie; nothing is read yet.
    /// @param modelDir     folder of the depth network
    /// @param resourceDir  folder of "/shader.3.bin"
    void setResourcePath(const char* modelDir, const char* resourceDir);

    /// Estimates the depth of a picture and refines it; needs Init.
    /// @param rgba       the picture; read only
    /// @param width      in pixels
    /// @param height     in pixels
    /// @param segMask    plane that marks the person, of a size of its own, or null
    /// @param segWidth   of segMask, in pixels
    /// @param segHeight  of segMask, in pixels
    /// @return false with a line in the log, and no depth plane, without a network or a picture
    bool DepthEstimate(unsigned char* rgba, int width, int height, unsigned char* segMask, int segWidth,
                       int segHeight);

    /// Copies the bokeh shape.
    /// @param name    must not be null; with "defocus_spin" in it the next Run spins the shape
    /// @param rgba    six frames of the shape side by side, 1056 by 176 pixels, of which red counts
    /// @param width   in pixels
    /// @param height  in pixels
    /// @return whether a copy of at least 1 by 1 pixels exists
    bool SetBokehImage(const char* name, unsigned char* rgba, int width, int height);

    /// Keeps the pointer (no copy) to a plane that marks hair; it must outlive the Run that uses it.
    /// @param mask    255 on hair, 0 elsewhere, of a size of its own; null takes it away
    /// @param width   in pixels
    /// @param height  in pixels
    void SetHairMaskData(unsigned char* mask, int width, int height);

    /// Mixes `top` into `base` by byte 0 of an RGBA mask.
    /// @param top         RGBA; read only
    /// @param base        RGBA, changed in place
    /// @param width       of both, in pixels
    /// @param height      of both, in pixels
    /// @param mask        RGBA, of a size of its own; scaled to the picture where that differs
    /// @param maskWidth   in pixels
    /// @param maskHeight  in pixels
    /// @param strength    0..1: at 1 the mask alone decides
    /// @param blurRadius  pixels; above 0 the mask is smoothed first, in the caller's buffer where its size
    ///                    is the picture's
    /// @return false with a line in the log where a pointer is null, a size below 1 or the strength NaN
    bool MixWidthMask(unsigned char* top, unsigned char* base, int width, int height, unsigned char* mask,
                      int maskWidth, int maskHeight, float strength, int blurRadius);

    /// Blurs `src` by depth into `dst`, on a smaller copy.
    /// @param src                RGBA; read only
    /// @param srcWidth           in pixels
    /// @param srcHeight          in pixels
    /// @param dst                RGBA; receives the result, scaled where the sizes differ
    /// @param dstWidth           in pixels
    /// @param dstHeight          in pixels
    /// @param faceCount          entries of faces
    /// @param faces              faceCount times x, y, width, height as fractions of the picture
    /// @param focusX             focus point, a fraction of the width, limited to 0..1
    /// @param focusY             focus point, a fraction of the height, limited to 0..1
    /// @param useDepth           false blurs everything by one radius
    /// @param blurLevel          strength of the blur, 0..100
    /// @param reserved1          not read
    /// @param reserved2          not read
    /// @param reserved3          not read
    /// @param useHairMask        use the mask of SetHairMaskData
    /// @param hasCurrentContext  the caller has an OpenGL context current on this thread, and rendering uses
    ///                           it; a caller that wants pixels passes true
    /// @param reserved4          not read
    /// @param intensity          strength of the lights' bloom, 0..1; 0.5 is usual
    /// @param vivid              how far colourful pixels outweigh grey ones, 0..1; 0 is neutral, and above 0
    ///                           the blur itself turns grey
    /// @return false without a bokeh image or where the shader file did not load
    bool Run(unsigned char* src, int srcWidth, int srcHeight, unsigned char* dst, int dstWidth, int dstHeight,
             int faceCount, float* faces, float focusX, float focusY, bool useDepth, int blurLevel,
             float reserved1, const char* reserved2, bool reserved3, bool useHairMask, bool hasCurrentContext,
             float reserved4, float intensity, float vivid);

    /// The same in place, by depth and at full size, with two more parameters of the look.
    /// @param image              RGBA, changed in place
    /// @param width              in pixels
    /// @param height             in pixels
    /// @param faceCount          entries of faces
    /// @param faces              as in the other form
    /// @param focusX             as in the other form
    /// @param focusY             as in the other form
    /// @param blurLevel          strength of the blur, 0..100
    /// @param highlights         how far bright pixels outweigh the rest, 0..3; the other form takes 3
    /// @param useHairMask        use the mask of SetHairMaskData
    /// @param hasCurrentContext  as in the other form
    /// @param amount             exponent of brightness, above 0: larger values let only the brightest lights
    ///                           bloom; the other form takes 1
    /// @param intensity          as in the other form
    /// @param vivid              as in the other form
    /// @return as the other form
    bool Run(unsigned char* image, int width, int height, int faceCount, float* faces, float focusX,
             float focusY, int blurLevel, float highlights, bool useHairMask, bool hasCurrentContext,
             float amount, float intensity, float vivid);

    /// A picture of noise from rand(), alpha 0.
    /// @param width   in pixels; not changed
    /// @param height  in pixels; not changed
    /// @return width by height RGBA pixels for free()
    unsigned char* createNoise(int& width, int& height);

    /// A whole file with a zero byte behind it.
    /// @param path  of a regular file
    /// @param size  receives the length of the file in bytes
    /// @return the bytes for free(). Null with a line in the log, and `size` untouched, where the path is
    ///         null or does not open
    char* ReadFile2String(const char* path, unsigned long& size);

    /// The depth plane that Run reads, a byte a pixel, nearer is larger; null before DepthEstimate. Owned by
    /// this object and valid until it estimates anew.
    const unsigned char* DepthPlane() const { return m_depth; }
    int DepthPlaneWidth() const { return m_depthWidth; }
    int DepthPlaneHeight() const { return m_depthHeight; }

    /// Copies a plane of the host's own in place of an estimated one; copies of this render keep theirs.
    /// @param plane   a byte a pixel, nearer is larger, of any size
    /// @param width   in pixels
    /// @param height  in pixels
    /// @return false for a null plane, a size below 1 or where memory ran out
    bool SetDepthPlane(const unsigned char* plane, int width, int height) {
        if (!plane || width < 1 || height < 1) return false;
        const std::size_t bytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        void* copy = std::malloc(bytes);
        if (!copy) return false;
        std::memcpy(copy, plane, bytes);
        ZelDepthDefocusRender former;  // gives the old plane back as any render does
        former.m_depth = m_depth;
        m_depth = static_cast<unsigned char*>(copy);
        m_depthWidth = width;
        m_depthHeight = height;
        return true;
    }

    /// Whether Run draws with loops of the processor in place of OpenGL: the same picture but for a level or two,
    /// and faster than an OpenGL that runs on the processor itself. It needs no context and no shader file then,
    /// and hasCurrentContext is not read. Off at first.
    void DrawOnProcessor(bool draws) { m_drawsOnProcessor = draws ? 1 : 0; }

    /// What became of the picture of the last Run on this object, whatever Run returned. A picture that was
    /// not drawn is as it was, and the log has one line that says why.
    enum class Outcome : unsigned char {
        none,  ///< no Run yet, or one whose arguments were refused
        drawn,
        noContext,      ///< no context of OpenGL 3.3 or later was current, or it was lost
        faultyShaders,  ///< the shader file lacks one, or the driver refuses one
        tooLarge,       ///< OpenGL has no textures of this size here
    };
    Outcome LastOutcome() const { return static_cast<Outcome>(m_outcome); }

private:
    friend struct DefocusInternals;

    std::string m_resourceDir;
    std::string m_modelDir;
    DepthEstimatorHandle* m_estimator = nullptr;
    unsigned char* m_hairMask = nullptr;
    int m_hairMaskWidth = 0;
    int m_hairMaskHeight = 0;
    unsigned char* m_bokehImage = nullptr;
    int m_bokehWidth = 0;
    int m_bokehHeight = 0;
    unsigned char m_spin = 0;
    unsigned char m_outcome = 0;
    unsigned char m_drawsOnProcessor = 0;
    std::string m_reserved;
    unsigned char* m_depth = nullptr;
    int m_depthWidth = 0;
    int m_depthHeight = 0;
};

}  // namespace DefocusCore
