#include "beautykernel/facefleckcleaner/fleckFill.h"
#include "zellab/imageproc/core/ownedImage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace zellab {

namespace {

constexpr float kWeightOne = 1048576.0f;  // 2^20

/// Weight of a colour by its distance from the edge in pixels. Beyond the table's end a weight is 0.
class DistanceWeights {
public:
    DistanceWeights(int width, int height) {
        const float r = std::max(static_cast<float>(std::min(width, height)) * 0.028f, 1.0f);
        const int count = static_cast<int>(std::sqrt((2.0f * r) * (2.0f * r)) * 1.15f + 0.5f) + 2;
        for (int k = 0; k < count; ++k)
            m_weights.push_back(static_cast<int>(
                std::exp(-static_cast<float>(k * k) / static_cast<float>(count)) * kWeightOne));
    }
    int at(int distance) const {
        const auto k = static_cast<std::size_t>(distance);
        return k < m_weights.size() ? m_weights[k] : 0;
    }

private:
    std::vector<int> m_weights;
};

using Colour = std::array<int, 3>;

/// What a walk carries: the colour of the last skin, and the steps since.
struct Walk {
    Colour colour;
    int steps = 0;

    explicit Walk(const Byte* first) : colour{first[0], first[1], first[2]} {}
    void meetSkin(const Byte* pixel) {
        for (std::size_t c = 0; c < 3; ++c) colour[c] = (colour[c] + pixel[c] + 1) / 2;
        steps = 1;
    }
};

class FleckFiller {
public:
    FleckFiller(ImageView crop, PlaneView<const int> labels)
        : m_crop(crop),
          m_labels(labels),
          m_weights(crop.width, crop.height),
          m_marginX(std::clamp(crop.width / 200, 1, 5)),
          m_marginY(std::clamp(crop.height / 200, 1, 5)),
          m_sums(crop.width, crop.height) {}

    void fill(const FleckRect& box, int label) {
        const int left = std::max(box.left - m_marginX, 0);
        const int right = std::min(box.right + m_marginX, m_crop.width - 1);
        const int top = std::max(box.top - m_marginY, 0);
        const int bottom = std::min(box.bottom + m_marginY, m_crop.height - 1);
        const auto add = [this](const Walk& walk, int x, int y) { addTo(walk, x, y); };
        const auto write = [this](const Walk& walk, int x, int y) { writeTo(walk, x, y); };
        for (int y = box.top; y <= box.bottom; ++y) {
            walkLine(left, y, 1, 0, box.right - left + 1, label, add);
            walkLine(right, y, -1, 0, right - box.left + 1, label, add);
        }
        for (int x = box.left; x <= box.right; ++x) {
            walkLine(x, bottom, 0, -1, bottom - box.top + 1, label, add);
            walkLine(x, top, 0, 1, box.bottom - top + 1, label, write);
        }
    }

private:
    struct Sum {
        Colour colour{};
        int weight = 0;  // at most three weights
    };

    /// Walks `count` pixels from (x, y) by (dx, dy) and calls meetFleck at those of the fleck.
    template <typename MeetFleck>
    void walkLine(int x, int y, int dx, int dy, int count, int label, const MeetFleck& meetFleck) {
        Walk walk(m_crop.at(x, y));
        for (; count > 0; --count, x += dx, y += dy) {
            const int l = m_labels.row(y)[x];
            if (l < 0) walk.meetSkin(m_crop.at(x, y));
            if (l != label) continue;
            meetFleck(walk, x, y);
            if (walk.steps > 0) ++walk.steps;
        }
    }

    void addTo(const Walk& walk, int x, int y) {
        if (walk.steps == 0) return;
        Sum& sum = m_sums.view().row(y)[x];
        const int weight = m_weights.at(walk.steps);
        for (std::size_t c = 0; c < 3; ++c) sum.colour[c] += weight * walk.colour[c];
        sum.weight += weight;
    }

    void writeTo(const Walk& walk, int x, int y) {
        const Sum& sum = m_sums.view().row(y)[x];
        const int weight = walk.steps > 0 ? m_weights.at(walk.steps) : 0;
        // In the middle of a large fleck every weight can round to 0.
        if (weight + sum.weight < 1) return;
        Byte* p = m_crop.at(x, y);
        for (std::size_t c = 0; c < 3; ++c)
            p[c] = static_cast<Byte>((weight * walk.colour[c] + sum.colour[c]) / (weight + sum.weight));
    }

    ImageView m_crop;
    PlaneView<const int> m_labels;
    DistanceWeights m_weights;
    int m_marginX, m_marginY;
    Plane<Sum> m_sums;
};

}  // namespace

void FillFlecks(ImageView crop, PlaneView<const int> labels, const std::vector<FleckRect>& flecks) {
    FleckFiller filler(crop, labels);
    for (std::size_t i = 0; i < flecks.size(); ++i) filler.fill(flecks[i], static_cast<int>(i) + 1);
}

}  // namespace zellab
