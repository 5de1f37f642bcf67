#include <algorithm>
#include <cmath>

#include "beautykernel/eyebright/eyeBright.h"
#include "frame/zel_log.h"
#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

bool allFinite(const EyeTuning& t) {
    const float values[] = {t.overallGain,   t.bandOffset, t.reservedShade, t.highlightGain, t.whiteGain,
                            t.darkTolerance, t.irisGain,   t.filterRadius,  t.filterEps,     t.filterScale};
    return std::all_of(std::begin(values), std::end(values), [](float v) { return std::isfinite(v); });
}

/// Both eyes of the face on their way through the steps.
class Eyes {
public:
    Eyes(EyePair wanted, ImageView picture, const Vector2f* points) : m_picture(picture) {
        const EyeLids left = lidsOf(points, EyeSide::left), right = lidsOf(points, EyeSide::right);
        const Iris leftIris = wanted.left ? locateIris(picture, points, EyeSide::left) : Iris{};
        const Iris rightIris = wanted.right ? locateIris(picture, points, EyeSide::right) : Iris{};
        m_found = {leftIris.found(), rightIris.found()};
        m_left = cutEye(picture, left, leftIris);
        m_right = cutEye(picture, right, rightIris);
        if (m_left.exists()) buildEyeMasks(m_left, left, leftIris);
        if (m_right.exists()) buildEyeMasks(m_right, right, rightIris);
    }

    EyePair found() const { return m_found; }

    void brighten(const EyeTuning& tuning) {
        EyeTone left, right;
        if (m_left.exists()) left = estimateEyeTone(m_left);
        if (m_right.exists()) right = estimateEyeTone(m_right);
        // An eye that stays as it is has no say in how the other looks.
        if (m_left.exists() && m_right.exists()) balanceTones(left, right);
        if (m_left.exists()) change(m_left, tuning, left);
        if (m_right.exists()) change(m_right, tuning, right);
    }

private:
    void change(EyeCut& eye, const EyeTuning& tuning, const EyeTone& tone) {
        recolourIrisRing(eye, tuning, tone.ratio);
        liftWhites(eye, tuning, tone);
        contrastIris(eye);
        smoothEye(eye, tuning);
        EyeBright::FuseEyeProcessImage(eye, m_picture, tuning.overallGain);
    }

    ImageView m_picture;
    EyePair m_found;
    EyeCut m_left, m_right;
};

}  // namespace

void EyeBright::Run(ImageView image, const Vector2f* points, const EyeTuning& tuning) {
    if (!image.valid() || !points || !allFinite(tuning)) return;
    const EyePair found = RunOn({}, image, points, tuning);
    if (!found.left) ZEL_LOG_ERROR("ERROR: EyeBright::Left Eye Detect failed \n");
    if (!found.right) ZEL_LOG_ERROR("ERROR: EyeBright::Right Eye Detect failed \n");
}

EyePair EyeBright::RunOn(EyePair wanted, ImageView image, const Vector2f* points, const EyeTuning& tuning) {
    if (!image.valid() || !points || !allFinite(tuning)) return {false, false};
    Eyes eyes(wanted, image, points);
    eyes.brighten(tuning);
    return eyes.found();
}

void EyeBright::FuseEyeProcessImage(const EyeCut& eye, ImageView picture, float overallGain) {
    EyeBox box = eye.box;
    if (!eye.exists() || box.empty() || box.width >= picture.width || box.height >= picture.height) return;
    if (box.x < 0 || box.y < 0 || box.x > picture.width - box.width || box.y > picture.height - box.height) {
        ZEL_LOG_ERROR(
            "ERROR: EyeBright FuseEyeProcessImage overide arry width = %d height=%d RectX=%d RectY=%d "
            "RectWidth=%d RectHeight=%d",
            picture.width, picture.height, box.x, box.y, box.width, box.height);
        box.x = std::clamp(box.x, 0, picture.width - box.width);
        box.y = std::clamp(box.y, 0, picture.height - box.height);
    }
    for (int y = 0; y < box.height; ++y)
        for (int x = 0; x < box.width; ++x) {
            const float weight = eye.lidDistance.view().row(y)[x] * overallGain;
            const Byte* source = eye.pixels().at(x, y);
            Byte* target = picture.at(box.x + x, box.y + y);
            for (int c = 0; c < 3; ++c)
                target[c] = truncateToByte(static_cast<float>(source[c]) * weight +
                                           static_cast<float>(target[c]) * (1.0f - weight));
        }
}

void brightenEyes(ImageView image, const Vector2f* points) {
    EyeBright::Run(image, points,
                   {.overallGain = 1.0f,
                    .bandOffset = 0.0f,
                    .reservedShade = 0.0f,
                    .highlightGain = 0.4f,
                    .whiteGain = 0.7f,
                    .darkTolerance = 0.0f,
                    .irisGain = 0.4f,
                    .filterRadius = 1.0f,
                    .filterEps = 0.4f,
                    .filterScale = 1.0f});
}

}  // namespace zellab
