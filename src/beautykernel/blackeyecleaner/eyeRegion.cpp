#include "beautykernel/blackeyecleaner/eyeRegion.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "beautykernel/blackeyecleaner/underEyeShape.h"
#include "frame/zel_log.h"
#include "zel_effects/interFacePoint.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/shapes/polygonFill.h"

namespace zellab {

namespace {

constexpr int kFirstEye = 0, kSecondEye = 10, kLastEye = 19;  // outlines of both eyes
constexpr int kFirstRing = 113, kLastRing = 152;              // cheeks, from the rows under the eyes down
constexpr std::size_t kFirstPupil = 169;
constexpr std::size_t kNoseTip = 48;
constexpr int kNoseTop = 41;  // the inner ends do not reach beyond half the way to it

/// Positions of one eye in the interpolated list.
struct EyeIndices {
    int outer, inner;        // corners
    int upperLid, lowerLid;  // the drop of the shadow follows the distance between them
    int lower1, lower2;      // middle of the lower lid
    int innerReturn;         // lower lid next to the inner corner
    int ringBottom;          // lower edge of the under-eye ring
    bool isLeft;
};
constexpr EyeIndices kLeftEye = {0, 5, 2, 7, 7, 8, 9, 115, true};
constexpr EyeIndices kRightEye = {15, 10, 12, 17, 17, 18, 16, 135, false};

float limited(float value, float low, float high) {
    return value > low ? std::min(value, high) : low;  // NaN becomes the lower end
}

PixelRect insidePicture(const DarkCircleRun& run, int width, int height) {
    PixelRect rect;
    rect.x = std::clamp(run.rectX, 0, width - 1);
    rect.y = std::clamp(run.rectY, 0, height - 1);
    rect.width = std::clamp(run.rectWidth, 0, width - rect.x);
    rect.height = std::clamp(run.rectHeight, 0, height - rect.y);
    return rect;
}

/// The box of both eyes and cheeks in the picture, at least one pixel.
PixelRect eyeBox(const Vector2f* points, int width, int height) {
    float left = static_cast<float>(width), top = static_cast<float>(height), right = 0.0f, bottom = 0.0f;
    for (int i = kFirstEye; i <= kLastRing; ++i) {
        if (i > kLastEye && i < kFirstRing) continue;
        const float x = limited(points[i].x, 0.0f, static_cast<float>(width - 1));
        const float y = limited(points[i].y, 0.0f, static_cast<float>(height - 1));
        left = std::min(left, x), right = std::max(right, x);
        top = std::min(top, y), bottom = std::max(bottom, y);
    }
    return {static_cast<int>(left), static_cast<int>(top),
            static_cast<int>(right) - static_cast<int>(left) + 1,
            static_cast<int>(bottom) - static_cast<int>(top) + 1};
}

PixelRect intersection(const PixelRect& a, const PixelRect& b) {
    const int x = std::max(a.x, b.x), y = std::max(a.y, b.y);
    return {x, y, std::min(a.x + a.width, b.x + b.width) - x, std::min(a.y + a.height, b.y + b.height) - y};
}

bool liesInside(Vector2f p, const PixelRect& rect) {
    return p.x > 0.0f && p.y > 0.0f && p.x < static_cast<float>(rect.width - 1) &&
           p.y < static_cast<float>(rect.height - 1);
}

int bandOf(float height) {
    return std::max(2, static_cast<int>(limited(height, 2.0f, 1e6f)));
}

/// The crescent of one eye. The core is the same with the end next to the nose drawn in and a lower band.
UnderEyeShape shapeOf(const EyeRegion& region, const EyeIndices& eye, const DarkCircleMethod& method,
                      bool core, float ringWeight) {
    const auto at = [&](int i) { return region.points[static_cast<std::size_t>(i)]; };
    const float drop = at(eye.lowerLid).y - at(eye.upperLid).y;
    const Vector2f lid = {(at(eye.lower1).x + at(eye.lower2).x) / 2.0f,
                          (at(eye.lower1).y + at(eye.lower2).y) / 2.0f};
    const Vector2f middle = {lid.x, lid.y + drop * method.middleDrop};
    const float beyond = (at(eye.inner).x - at(eye.outer).x) * method.reach;  // towards the nose
    const Vector2f outer = {at(eye.outer).x - beyond, at(eye.outer).y + drop * method.endDrop};
    Vector2f inner = core ? at(eye.innerReturn) : at(eye.inner);
    if (!core) {
        const float toNose = (at(kNoseTop).x - inner.x) / 2.0f,
                    lidReturn = (inner.x - at(eye.innerReturn).x) / 2.0f;
        inner.x += eye.isLeft ? std::min(toNose, lidReturn) : std::max(toNose, lidReturn);
    }
    inner.x += beyond;
    inner.y += drop * method.endDrop;
    const float depth = at(eye.ringBottom).y - middle.y;
    UnderEyeShape shape;
    shape.outerEnd = region.inCrop(outer);
    shape.innerEnd = region.inCrop(inner);
    shape.middle = region.inCrop(middle);
    shape.band = bandOf(core ? depth * 2.0f * ringWeight : depth * method.band);
    return shape;
}

/// The almond of an open eye about a narrow one, whose outline tells little of where its lids and whites lie;
/// nothing for an eye that is open.
std::vector<Vector2f> almondOfNarrowEye(const EyeRegion& region, int first) {
    constexpr float kNarrow = 0.09f;  // rise of the upper lid above the corners, as a share of their distance
    constexpr std::size_t kCorner = 5, kAlong = 4;  // upper lid 1 to 4 between the corners 0 and 5
    // Of an open eye at each fifth of its width, from the outer corner inwards, as shares of the width.
    constexpr std::array<float, kAlong> kAbove = {0.14f, 0.20f, 0.21f, 0.165f};
    constexpr std::array<float, kAlong> kBelow = {0.13f, 0.165f, 0.15f, 0.11f};
    const Vector2f* outline = &region.points[static_cast<std::size_t>(first)];
    const bool fromOuter = first == kFirstEye;
    const Vector2f outer = outline[fromOuter ? 0 : kCorner], inner = outline[fromOuter ? kCorner : 0];
    const Vector2f chord = {inner.x - outer.x, inner.y - outer.y}, nose = region.points[kNoseTip];
    const float turn = chord.x * (nose.y - outer.y) < chord.y * (nose.x - outer.x) ? -1.0f : 1.0f;
    const Vector2f down = {-chord.y * turn, chord.x * turn};
    float rise = 0.0f;
    for (std::size_t i = 1; i <= kAlong; ++i)
        rise = std::max(rise, (outer.x - outline[i].x) * down.x + (outer.y - outline[i].y) * down.y);
    if (!(rise < kNarrow * (chord.x * chord.x + chord.y * chord.y))) return {};
    std::vector<Vector2f> almond;
    const auto append = [&](std::size_t fifth, float below) {
        const float along = static_cast<float>(fifth) / 5.0f;
        almond.push_back(region.inCrop(
            {outer.x + chord.x * along + down.x * below, outer.y + chord.y * along + down.y * below}));
    };
    append(0, 0.0f);
    for (std::size_t i = 0; i < kAlong; ++i) append(i + 1, -kAbove[i]);
    append(5, 0.0f);
    for (std::size_t i = kAlong; i-- > 0;) append(i + 1, kBelow[i]);
    return almond;
}

}  // namespace

std::optional<EyeRegion> findEyeRegion(int width, int height, const DarkCircleRun& run) {
    EyeRegion region;
    region.face = insidePicture(run, width, height);
    const PixelRect eyes = eyeBox(run.points, width, height);
    if (eyes.count() > region.face.count()) {
        ZEL_LOG_ERROR_AT("beautykernel/blackeyecleaner/blackeyecleaner.cpp", 78,
                         "ERROR: invalidate face data eyePixelCount = %d nFacePixelCount=%d",
                         static_cast<int>(std::min<std::size_t>(eyes.count(), 0x7fffffff)),
                         static_cast<int>(std::min<std::size_t>(region.face.count(), 0x7fffffff)));
        return std::nullopt;
    }
    region.crop = intersection(eyes, region.face);
    if (region.crop.width < 1 || region.crop.height < 1)  // eyes beside the face: one pixel of it
        region.crop = {region.face.x, region.face.y, 1, 1};
    for (int i = 0; i < CInterFacePoint::kBlockPoints; ++i)
        region.points.push_back({limited(run.points[i].x - static_cast<float>(region.face.x), 0.0f,
                                         static_cast<float>(region.face.width - 1)),
                                 limited(run.points[i].y - static_cast<float>(region.face.y), 0.0f,
                                         static_cast<float>(region.face.height - 1))});
    return region;
}

void cutEyes(Plane<Byte>& plane, const EyeRegion& region) {
    constexpr int kOutlinePoints = 10;
    constexpr float kRim = 1.2f;  // the outline runs a little inside the lids
    for (int first : {kFirstEye, kSecondEye}) {
        const Vector2f* points = &region.points[static_cast<std::size_t>(first)];
        float x = 0.0f, y = 0.0f;
        for (int i = 0; i < kOutlinePoints; ++i)
            x += points[i].x / kOutlinePoints, y += points[i].y / kOutlinePoints;
        std::vector<Vector2f> outline;
        outline.reserve(kOutlinePoints);
        for (int i = 0; i < kOutlinePoints; ++i)
            outline.push_back(region.inCrop({x + (points[i].x - x) * kRim, y + (points[i].y - y) * kRim}));
        FillPolygonMask(plane.view(), outline, 0);
        FillPolygonMask(plane.view(), almondOfNarrowEye(region, first), 0);

        constexpr int kCorner = 5, kSides = 16;
        constexpr float kIris = 0.21f, kTurn = 6.2831853f;  // radius, as a share of the eye's width
        const Vector2f pupil = region.points[first == kFirstEye ? kFirstPupil : kFirstPupil + 1];
        const float radius = std::abs(points[kCorner].x - points[0].x) * kIris;
        std::vector<Vector2f> iris;
        for (int i = 0; i < kSides; ++i) {
            const float turn = kTurn * static_cast<float>(i) / kSides;
            iris.push_back(
                region.inCrop({pupil.x + radius * std::cos(turn), pupil.y + radius * std::sin(turn)}));
        }
        FillPolygonMask(plane.view(), iris, 0);
    }
}

UnderEyeMasks drawUnderEyeMasks(const EyeRegion& region, const DarkCircleRun& run,
                                const DarkCircleMethod& method) {
    const int w = region.crop.width, h = region.crop.height;
    UnderEyeMasks masks{Plane<Byte>(w, h), Plane<Byte>(w, h), Plane<Byte>(w, h)};
    Plane<Byte> core(w, h);
    for (const EyeIndices& eye : {kLeftEye, kRightEye}) {
        if (!liesInside(region.points[static_cast<std::size_t>(eye.outer)], region.face)) continue;
        drawUnderEyeShape(masks.region.view(), shapeOf(region, eye, method, false, run.ringWeight));
        drawUnderEyeShape(core.view(), shapeOf(region, eye, method, true, run.ringWeight));
    }
    const auto share = [](float part) { return static_cast<Byte>(limited(part * 255.0f, 0.0f, 255.0f)); };
    const Byte coreShare = share(run.coreStrength), ringShare = share(run.strength);
    for (std::size_t i = 0; i < core.size(); ++i) {
        const bool inRegion = masks.region.data()[i] != 0, inCore = core.data()[i] != 0;
        if (inRegion && inCore) {
            masks.soft.data()[i] = coreShare;
        } else if (inRegion || inCore) {
            masks.soft.data()[i] = ringShare;
            masks.repair.data()[i] = masks.region.data()[i];
        }
    }
    StackBlurGray(masks.soft.view(),
                  std::max(method.softMin, run.rectWidth / method.softDivisor + method.softExtra));
    cutEyes(masks.soft, region);  // crescents and blur reach over the lid, and irises are no skin
    return masks;
}

}  // namespace zellab
