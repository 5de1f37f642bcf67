#include "beautykernel/eyebright/eyeMasks.h"
#include "zellab/imageproc/core/ownedImage.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zellab {

namespace {

/// The columns between the lids on one row, both ends inclusive; empty where left is above right.
struct Span {
    int left = std::numeric_limits<int>::max(), right = std::numeric_limits<int>::min();

    void take(float column) {
        const int whole = static_cast<int>(std::floor(column));
        left = std::min(left, whole), right = std::max(right, whole);
    }
};

/// Where row y of the picture crosses the curve.
void takeCrossings(const std::array<LidPoint, EyeLids::kPoints>& curve, int y, Span& span) {
    for (std::size_t i = 0; i + 1 < curve.size(); ++i) {
        const LidPoint &a = curve[i], &b = curve[i + 1];
        if (y < std::min(a.y, b.y) || y > std::max(a.y, b.y)) continue;
        if (a.y == b.y) {
            span.take(static_cast<float>(a.x));
            span.take(static_cast<float>(b.x));
        } else {
            const float along = static_cast<float>(y - a.y) / static_cast<float>(b.y - a.y);
            span.take(static_cast<float>(a.x) + along * static_cast<float>(b.x - a.x));
        }
    }
}

struct LidFrame {
    float centreX = 0.0f, centreY = 0.0f;
    int top, bottom;  // rows of the lids' extent

    explicit LidFrame(const EyeLids& lids)
        : top(std::numeric_limits<int>::max()), bottom(std::numeric_limits<int>::min()) {
        for (const auto* curve : {&lids.upper, &lids.lower})
            for (const LidPoint& p : *curve) {
                centreX += static_cast<float>(p.x), centreY += static_cast<float>(p.y);
                top = std::min(top, p.y), bottom = std::max(bottom, p.y);
            }
        centreX /= 2 * EyeLids::kPoints, centreY /= 2 * EyeLids::kPoints;
    }
};

float fourthPower(float v) {
    return v * v * (v * v);
}

float squaredDistance(float dx, float dy) {
    return dx * dx + dy * dy;
}

}  // namespace

EyeCut cutEye(ConstImageView picture, const EyeLids& lids, const Iris& iris) {
    EyeCut eye;
    if (!iris.found()) return eye;
    eye.box = eyeBox(lids, picture.width, picture.height);
    if (eye.box.empty()) return eye;
    eye.rgba = copyOf(picture.crop(eye.box.x, eye.box.y, eye.box.width, eye.box.height));
    return eye;
}

void buildEyeMasks(EyeCut& eye, const EyeLids& lids, const Iris& iris) {
    const int width = eye.box.width, height = eye.box.height;
    for (Plane<float>* plane : {&eye.lidShape, &eye.irisRadial, &eye.eyeRadial, &eye.lidDistance})
        *plane = Plane<float>(width, height);
    eye.lidCoords = Plane<LidCoords>(width, height);

    const LidFrame frame(lids);
    const float diagonal =
        std::round(std::hypot(static_cast<float>(width - 1), static_cast<float>(height - 1)));
    const float eyeSquare = diagonal * diagonal / 4.0f, irisSquare = iris.radius * iris.radius;
    for (int row = 0; row < height; ++row) {
        const int y = eye.box.y + row;
        Span span;
        takeCrossings(lids.upper, y, span);
        takeCrossings(lids.lower, y, span);
        if (span.left >= span.right) continue;  // a span of one column has no place from left to right
        const float middle = static_cast<float>(span.left + span.right) / 2.0f,
                    spanWidth = static_cast<float>(span.right - span.left);
        const float ey = 2.0f * (static_cast<float>(y) - frame.centreY) / static_cast<float>(height);
        const int first = std::max(span.left, eye.box.x), last = std::min(span.right, eye.box.x + width - 1);
        for (int x = first; x <= last; ++x) {
            const int column = x - eye.box.x;
            const auto px = static_cast<float>(x), py = static_cast<float>(y);
            const float ex = 2.0f * (px - middle) / spanWidth;
            const LidCoords coords = {ex, ey, 1.0f - fourthPower(ex), 1.0f - fourthPower(ey)};
            eye.lidCoords.row(row)[column] = coords;
            const float shape = coords.falloffX * coords.falloffY;
            if (shape >= 0.0f) eye.lidShape.row(row)[column] = shape;
            eye.irisRadial.row(row)[column] = squaredDistance(px - iris.x, py - iris.y) / irisSquare;
            eye.eyeRadial.row(row)[column] =
                squaredDistance(px - frame.centreX, py - frame.centreY) / eyeSquare;
            const int distance =
                std::min(std::min(x - span.left, span.right - x), std::min(y - frame.top, frame.bottom - y));
            eye.lidDistance.row(row)[column] =
                std::min(static_cast<float>(distance) / EyeCut::kFullDistance, 1.0f);
        }
    }
}

}  // namespace zellab
