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
/// a line on standard error says why where one is documented. Nothing is thrown but a failing allocation.
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

    /// Mixes `source` (same size as `image`) into a region of `image`, by a mask.
    /// @param height  only limits the region: what overhangs the picture stays untouched
    /// @param mask    params[2] by params[3] pixels of four bytes, of which byte 0 counts; it is blurred in
    /// place
    /// @param params  six floats: left, top, width and height of the region and the radius of the mask blur
    ///                (pixels, truncated to integers), then the strength: 1 means the mask alone decides
    static void ImageProcessWithAlphaMix(unsigned char* image, int width, int height, unsigned char* source,
                                         unsigned char* mask, float* params);

    /// Brightness, contrast, saturation and a logarithmic lift, in this order; 0 is neutral in each.
    /// @param params  `count` floats: brightness -100..100, contrast -100..100, saturation in percent of
    /// change
    ///                (truncated), lift in tenths (truncated; read only where count is exactly 4)
    /// @param count   below 3 nothing happens
    static void ImageProcessWithColorMixing(unsigned char* image, int width, int height, float* params,
                                            int count);

    /// Blurs bytes 0 to 2 with a triangular kernel of half-width radius + 1 (a stack blur). A radius above a
    /// quarter of the shorter side is replaced by that limit; 0 and below change nothing.
    static void ImageProcessWithGaussBlur(unsigned char* image, int width, int height, int radius);

    /// Replaces blocks of blockSize by blockSize pixels by their mean. A block size below 2 acts as 2.
    static void ImageProcessWithMosaic(unsigned char* image, int width, int height, int blockSize);

    /// Unsharp mask against a blurred copy that the caller made.
    /// @param amount   0 leaves the picture; above 0 sharpens (four times the amount is added); below 0 moves
    ///                 the picture towards the blurred copy
    /// @param blurred  address of the blurred copy, of the picture's size; must not be null: without it the
    ///                 picture stays as it is. Where *blurred is null the picture stays as well.
    static void ImageProcessWithSharp(unsigned char* image, int width, int height, float amount,
                                      unsigned char** blurred);
};

/// Skin, eyes and repair. All static. A `void* points` is a zellab::CInterFacePoint* with the picture's
/// faces.
class ZEL_EXPORT TableSkin {
public:
    TableSkin& operator=(const TableSkin&);
    TableSkin& operator=(TableSkin&&);

    /// Clears the eyes of one face: iris ring, whites and contrast, inside soft masks.
    /// @param overallGain .. irisGain  percentages (100 is full); bandOffset sets the inner edge of the iris
    /// ring
    /// @param reservedShade            stored, not read
    /// @param filterRadius, filterEps, filterScale  exponent, scale and factor of the guided filter of the
    /// iris An eye whose iris is not found stays as it is, with a line in the log.
    static void ImageProcessWithAutoEyeBright(unsigned char* image, int width, int height, void* points,
                                              int faceIndex, float overallGain, float bandOffset,
                                              float reservedShade, float highlightGain, float whiteGain,
                                              float darkTolerance, float irisGain, float filterRadius,
                                              float filterEps, float filterScale);

    /// Finds flecks on one face and repairs them.
    /// @param skinMask  plane of the picture's size, or null: nothing is sought where it is 0, and it
    ///                  receives how much each of its other pixels is skin
    /// @param faceRect  the face in pixels; not changed
    /// @param points    a zellab::CInterFacePoint
    /// @param method    0 fleck cleaner, 1 fine fleck cleaner; others only fill skinMask
    /// Nothing happens, also to skinMask, for a null picture or points, a rectangle without size or a face
    /// without points.
    static void ImageProcessWithAutoFaceInpaint(unsigned char* image, unsigned char* skinMask, int width,
                                                int height, CGRect& faceRect, void* points, int faceIndex,
                                                int method);

    /// Lightens the shadows under both eyes.
    /// @param faceRect  the face in pixels; clamped to the picture in place (not where strength is 0 or
    /// below)
    /// @param strength  0..1; 0 and below change nothing
    /// @param method    0 or 1; others change nothing
    static void ImageProcessWithAutoRemoveBlackCircle(unsigned char* image, int width, int height,
                                                      CGRect& faceRect, void* points, int faceIndex,
                                                      float strength, int method);

    /// Brightens by the detail that a blur removes (high pass, colour burn).
    /// @param radius  blur radius in pixels, limited as in ImageProcessWithGaussBlur
    /// @param level   0..10, limited to that range; 0 leaves the picture as it is
    /// @return false for a null picture or a size below 1, true otherwise
    static bool ImageProcessWithBright(unsigned char* image, int width, int height, int radius, int level);

    /// Fills what a mask marks. @param mask plane, non-zero in the hole. @param method 1 chooses the gradient
    /// engine (Poisson), any other value the patch engine, which draws on rand().
    static void ImageProcessWithInpaint(unsigned char* image, int width, int height, unsigned char* mask,
                                        int method);

    /// Smooths and tones the skin of the first face; `faceInfo` may hold no face.
    /// @param strength  0..1, share of the retouched picture
    /// @param mask      plane of the picture's size that weighs the result (255: all of it), or null
    static void ImageProcessWithQornSkinRetouch(unsigned char* image, int width, int height, float strength,
                                                ImageCoreFaceInfo* faceInfo, unsigned char* mask);

    /// Brightens skin and eyes.
    /// @param params    two floats: brightness level, strength of the tone step (0.5 is neutral)
    /// @param mask      as in ImageProcessWithQornSkinRetouch, or null
    /// @param prepared  RGBA picture of the same size to start from in place of levels and eye work, or null
    static void ImageProcessWithQornSkinWhitening(unsigned char* image, int width, int height, float* params,
                                                  ImageCoreFaceInfo* faceInfo, unsigned char* mask,
                                                  unsigned char* prepared);

    /// The kernel of ImageProcessWithBright without its result; same parameters, same outcome on bad input
    /// but for the return value.
    static void ImageProcessWithMascara(unsigned char* image, int width, int height, int radius, int level);

    /// Smoothing that keeps detail: shadows are moved to a toned copy by a soft-light mask of the blurred
    /// green.
    /// @param radius  blur radius in pixels, limited as in ImageProcessWithGaussBlur
    static void ImageProcessWithNatureSmooth(unsigned char* image, int width, int height, int radius);

    /// Lightens dark circles where the host says they are.
    /// @param mask     plane of the picture's size, read where useMask is not 0
    /// @param rect     four floats x, y, width, height in pixels, read where useMask is 0
    static void ImageProcessWithRemoveBlackCircle(unsigned char* image, int width, int height,
                                                  unsigned char* mask, float* rect, int useMask);

    /// Smooths and brightens the skin colours of the whole picture.
    /// @param params  four floats: smoothing radius in pixels, mix 0..10, brightness level, tone strength
    /// (signed)
    /// @param unused  never read
    static void ImageProcessWithSkin(unsigned char* image, int width, int height, float* params,
                                     char* unused);

    /// Tints through a colour table made from a neutral one.
    /// @param strength      tone, 0..1; 0.5 is neutral
    /// @param level         brightness level; 0 still brightens slightly
    /// @param neutralTable  tableWidth by tableHeight RGBA, the 64 by 64 cube picture of CScenarioBeauty::Run
    static void ImageProcessWithSkinColor(unsigned char* image, int width, int height, float strength,
                                          float level, const unsigned char* neutralTable, int tableWidth,
                                          int tableHeight);

    /// Smooths the wrinkles that a mask marks.
    /// @param mask      plane of the picture's size, non-zero on the wrinkles
    /// @param strength  percentage
    /// @param method    chooses the engine
    static void ImageProcessWithWrinkleCleaner(unsigned char* image, int width, int height,
                                               unsigned char* mask, int strength, int method);
};

/// Reads image files into RGBA buffers. All static. A result is released with free(); null on failure, with
/// a line in the log.
class ZEL_EXPORT StbImageUtil {
public:
    StbImageUtil& operator=(const StbImageUtil&);
    StbImageUtil& operator=(StbImageUtil&&);

    /// Decodes a file (PNG, JPEG, BMP, GIF, TGA, PSD, HDR, PIC, PNM).
    /// @param width, height  receive the decoded size, also where maxSize reduces the result: a caller that
    /// sets
    ///                       maxSize works out the reduced size (longer side = maxSize, the other
    ///                       side * maxSize / longer side in integers) and passes keepAlpha true
    /// @param channels       receives the channels in the file; the result always has four
    /// @param scrambled      the file carries a four-byte head and scrambled bytes
    /// @param keepAlpha      false flattens the picture onto white
    /// @param maxSize        limit of the longer side in pixels; 0 and below: none
    /// @param reserved, unusedContext  not read
    static unsigned char* loadImageFromFile(const std::string& path, int& width, int& height, int& channels,
                                            bool scrambled, bool keepAlpha, int maxSize, bool reserved,
                                            void* unusedContext);

    /// The same from `size` bytes in memory, which are never scrambled.
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

    /// Narrows one face by its landmarks, with the default shape factors (1.0, 0.9, 0.6, 0.2, 0.4, 0.34,
    /// -0.5).
    /// @return always true: bad input leaves the picture as it is
    static bool autoSlimFace(unsigned char* image, int width, int height, zellab::CInterFacePoint* points,
                             float strength, int faceIndex);

    /// The same with all factors given.
    /// @param strength  overall strength, usually 0..1; the chin does not follow it
    /// @param outerWeight, middleWeight, innerWeight  weights of the three rings that carry the warp
    /// @param upperFactor, lowerFactor, jawFactor     pull of the cheeks, the lower cheeks and the jaw
    /// @param chinFactor  pull of the chin; negative moves it outwards
    static bool autoSlimFace(unsigned char* image, int width, int height, zellab::CInterFacePoint* points,
                             float strength, float outerWeight, float middleWeight, float innerWeight,
                             float upperFactor, float lowerFactor, float jawFactor, float chinFactor,
                             int faceIndex);

    /// Pushes the picture from start to end with a round brush.
    /// @param startX, endX, radius  fractions of the width; startY, endY fractions of the height
    /// @param strength  percentage; below 1 nothing moves. Negative: a pinch at the end point
    /// @return false for a null picture, a size below 1 or a radius below 2 pixels, with a line in the log
    static bool slimFace(unsigned char* image, int width, int height, float startX, float startY, float endX,
                         float endY, float radius, float strength);
};

/// Enlarges eyes. All static.
class ZEL_EXPORT CEyeZoomRender {
public:
    CEyeZoomRender& operator=(const CEyeZoomRender&);
    CEyeZoomRender& operator=(CEyeZoomRender&&);

    /// Enlarges both eyes of one face by its landmarks, with eyeRatioLimit 0.9, zoomFactor 0.2,
    /// ringScale 1.0.
    /// @return always true: bad input leaves the picture as it is
    static bool autoZoomEye(unsigned char* image, int width, int height, zellab::CInterFacePoint* points,
                            float strength, int faceIndex);

    /// The same with all factors given.
    /// @param eyeRatioLimit  ratio of both eyes' width to the face's at which the zoom falls to nothing;
    /// wider
    ///                       eyes shrink
    /// @param zoomFactor     scale of the zoom
    /// @param ringScale      distance of the ring that stays fixed, from the outline outwards, as a fraction
    /// of
    ///                       the outline's distance from the eye's centre
    static bool autoZoomEye(unsigned char* image, int width, int height, zellab::CInterFacePoint* points,
                            float strength, float eyeRatioLimit, float zoomFactor, float ringScale,
                            int faceIndex);

    /// Bulges the picture around one point.
    /// @param center    fractions of width and height
    /// @param radius    fraction of the width
    /// @param strength  percentage; negative shrinks
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

    /// Makes the depth engine and loads the network from the model directory. @param reserved not read.
    /// @return whether the network was loaded
    bool Init(bool reserved);

    /// Frees the depth engine; a later Init makes it anew.
    void Release();

    /// @param modelDir     where the depth network lies
    /// @param resourceDir  where "/shader.3.bin" lies
    void setResourcePath(const char* modelDir, const char* resourceDir);

    /// Estimates the depth of an RGBA picture and refines it; needs Init.
    /// @param segMask  person mask of segWidth by segHeight bytes, or null
    /// @return false with a line in the log, and no depth plane, without a network or a picture
    bool DepthEstimate(unsigned char* rgba, int width, int height, unsigned char* segMask, int segWidth,
                       int segHeight);

    /// Copies the bokeh shape. @param name must not be null; with "defocus_spin" in it the next Run spins the
    /// shape.
    /// @return whether a copy of at least 1 by 1 pixels exists
    bool SetBokehImage(const char* name, unsigned char* rgba, int width, int height);

    /// Keeps the pointer (no copy) to a plane that marks hair; it must outlive the Run that uses it.
    void SetHairMaskData(unsigned char* mask, int width, int height);

    /// Mixes `top` into `base` (both RGBA) by byte 0 of an RGBA mask.
    /// @param strength    1: the mask alone decides
    /// @param blurRadius  above 0 the mask is smoothed first, in the caller's buffer where its size is the
    /// picture's
    /// @return false with a line in the log where a pointer is null, a size below 1 or the strength NaN
    bool MixWidthMask(unsigned char* top, unsigned char* base, int width, int height, unsigned char* mask,
                      int maskWidth, int maskHeight, float strength, int blurRadius);

    /// Blurs `src` by depth into `dst`.
    /// @param faces              faceCount records of x, y, width, height as fractions of the picture
    /// @param focusX, focusY     focus point as fractions, limited to 0..1
    /// @param useDepth           false blurs by one radius
    /// @param blurLevel          0..100
    /// @param useHairMask        use the mask of SetHairMaskData
    /// @param hasCurrentContext  the caller has an OpenGL context current on this thread, and rendering uses
    /// it;
    ///                           a caller that wants pixels passes true
    /// @param intensity, vivid   look of the highlights and of the colours
    /// @return false without a bokeh image or where the shader file did not load
    bool Run(unsigned char* src, int srcWidth, int srcHeight, unsigned char* dst, int dstWidth, int dstHeight,
             int faceCount, float* faces, float focusX, float focusY, bool useDepth, int blurLevel,
             float reserved1, const char* reserved2, bool reserved3, bool useHairMask, bool hasCurrentContext,
             float reserved4, float intensity, float vivid);

    /// The same in place, by depth, with two more parameters of the look.
    bool Run(unsigned char* image, int width, int height, int faceCount, float* faces, float focusX,
             float focusY, int blurLevel, float highlights, bool useHairMask, bool hasCurrentContext,
             float amount, float intensity, float vivid);

    /// A picture of width by height pixels of noise from rand(), alpha 0. The caller frees it with free().
    unsigned char* createNoise(int& width, int& height);

    /// A whole file with a zero byte behind it; `size` receives the length of the file. The caller frees it
    /// with free(). Null with a line in the log, and `size` untouched, where the path is null or does not
    /// open.
    char* ReadFile2String(const char* path, unsigned long& size);

    /// The depth plane that Run reads, a byte a pixel, nearer is larger; null before DepthEstimate. Owned by
    /// this object and valid until it estimates anew.
    const unsigned char* DepthPlane() const { return m_depth; }
    int DepthPlaneWidth() const { return m_depthWidth; }
    int DepthPlaneHeight() const { return m_depthHeight; }

    /// Copies a plane of the host's own, of any size, in place of an estimated one; copies of this render
    /// keep theirs. @return false for a null plane, a size below 1 or where memory ran out
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

    /// What became of the picture of the last Run on this object, whatever Run returned. A picture that was
    /// not drawn is as it was, and the log has one line that says why.
    enum class Outcome : unsigned char {
        none,  ///< no Run yet, or one whose arguments were refused
        drawn,
        noContext,      ///< no context of OpenGL 3.3 or later was current
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
    std::string m_reserved;
    unsigned char* m_depth = nullptr;
    int m_depthWidth = 0;
    int m_depthHeight = 0;
};

}  // namespace DefocusCore
