#include "depth/depthAreas.h"

#include <cstdint>
#include <vector>

#include "depth/depthLog.h"

namespace zellab {

namespace {

constexpr int kMaskThreshold = 128;      // a mask sample above it belongs to a person
constexpr int kUncertain = 80;           // confidence below it is doubted
constexpr float kShareOfDoubted = 0.9f;  // what uncertain depth outside the areas keeps

/// The area of every sample, from 1 in the order in which rows meet them; 0 outside.
class AreaMap {
public:
    explicit AreaMap(PlaneView<const Byte> mask)
        : m_mask(mask), m_labels(sampleCount(mask.width, mask.height)) {
        for (std::size_t i = 0; i < m_labels.size(); ++i)
            if (unlabelled(i)) fill(i, ++m_count);
    }

    int count() const { return m_count; }
    /// An array of its own: the mask's mark can be no area's number, however many areas there are.
    int at(std::size_t i) const { return m_labels[i]; }
    std::size_t size() const { return m_labels.size(); }

private:
    bool unlabelled(std::size_t i) const { return m_mask.data[i] > kMaskThreshold && m_labels[i] == 0; }

    void visit(std::size_t i, int label) {
        if (!unlabelled(i)) return;
        m_labels[i] = label;
        m_queue.push_back(i);
    }

    void fill(std::size_t first, int label) {
        const auto width = static_cast<std::size_t>(m_mask.width);
        m_queue.clear();
        visit(first, label);
        // NOLINTNEXTLINE(modernize-loop-convert): the queue grows on the way
        for (std::size_t head = 0; head < m_queue.size(); ++head) {
            const std::size_t i = m_queue[head], x = i % width, y = i / width;
            if (x > 0) visit(i - 1, label);
            if (x + 1 < width) visit(i + 1, label);
            if (y > 0) visit(i - width, label);
            if (y + 1 < static_cast<std::size_t>(m_mask.height)) visit(i + width, label);
        }
    }

    PlaneView<const Byte> m_mask;
    std::vector<int> m_labels;
    std::vector<std::size_t> m_queue;
    int m_count = 0;
};

/// Mean depth of each area, by its number.
std::vector<float> areaMeans(const AreaMap& areas, PlaneView<const Byte> depth) {
    const auto slots = static_cast<std::size_t>(areas.count()) + 1;
    std::vector<std::int64_t> sums(slots), counts(slots);
    for (std::size_t i = 0; i < areas.size(); ++i) {
        const int label = areas.at(i);
        if (label > areas.count()) {
            logDepth("label %d is bigger than area number", label);
            continue;
        }
        sums[static_cast<std::size_t>(label)] += depth.data[i];
        ++counts[static_cast<std::size_t>(label)];
    }
    std::vector<float> means(slots);
    for (std::size_t a = 1; a < slots; ++a)
        means[a] = static_cast<float>(sums[a]) / static_cast<float>(counts[a]);
    return means;
}

}  // namespace

void ModifyDepthByAreas(PlaneView<const Byte> mask, PlaneView<Byte> depth, PlaneView<const Byte> confidence) {
    if (!mask.valid() || !depth.valid() || !confidence.valid()) return;
    const AreaMap areas(mask);
    logDepth("area number:%d", areas.count());
    if (areas.count() == 0) return;
    const std::vector<float> means = areaMeans(areas, depth);
    for (std::size_t i = 0; i < areas.size(); ++i) {
        const int label = areas.at(i);
        const float mean = means[static_cast<std::size_t>(label)];
        const auto own = static_cast<float>(depth.data[i]);
        if (label > 0 && mean > own)
            depth.data[i] = static_cast<Byte>(mean);
        else if (confidence.data[i] < kUncertain)
            depth.data[i] = static_cast<Byte>(own * kShareOfDoubted);
    }
}

}  // namespace zellab
