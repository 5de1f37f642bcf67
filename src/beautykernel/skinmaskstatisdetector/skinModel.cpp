#include "beautykernel/skinmaskstatisdetector/skinModel.h"

#include <algorithm>
#include <cmath>

#include "beautykernel/skinmaskstatisdetector/skinTables.h"
#include "zellab/imageproc/blur/stackBlur.h"

namespace zelbeauty {

namespace {

constexpr int kSide = 256;
constexpr int kBoxBlurRadius = 25;

int limit(int value) {
    return std::clamp(value, 0, kSide - 1);
}

/// Moves an end of the brightness range outwards: (end / 255) ^ exponent, back on 0..255.
int outerEdge(int end, float exponent) {
    return std::min(static_cast<int>(std::pow(static_cast<float>(end) / 255.0f, exponent) * 255.0f), 255);
}

struct LumaRange {
    int low, high, edgeLow, edgeHigh;
};

std::array<unsigned char, 256> lumaWeights(const LumaRange& range, bool fromFace) {
    std::array<unsigned char, 256> weights{};
    const auto at = [&](int i) -> unsigned char& { return weights[static_cast<std::size_t>(limit(i))]; };
    const auto ratio = [](int a, int b) { return static_cast<float>(a) / static_cast<float>(b); };
    for (int i = range.low; i <= range.high; ++i) at(i) = 255;

    const int knee = std::max(range.edgeLow, static_cast<int>(static_cast<float>(range.low) * 0.9f));
    for (int i = knee; i <= range.low; ++i) at(i) = 255;
    const float gamma = fromFace ? 1.25f : 0.5f;
    for (int i = range.edgeLow; i <= knee; ++i)
        at(i) = static_cast<unsigned char>(
            std::pow(ratio(i - range.edgeLow + 1, knee - range.edgeLow + 1), gamma) * 255.0f);

    const auto start = static_cast<float>(at(range.edgeLow + 1));
    for (int i = range.edgeLow; i > 0; --i)
        at(i) = static_cast<unsigned char>(std::pow(ratio(i, range.edgeLow), 3.0f) * start);
    at(0) = 0;  // where the edge is 0 the ramp has no length

    for (int i = range.high; i <= range.edgeHigh; ++i)
        at(i) = static_cast<unsigned char>(
            std::sqrt(1.0f - ratio(i - range.high + 1, range.edgeHigh - range.high + 1)) * 128.0f + 128.0f);
    for (int i = range.edgeHigh + 1; i < kSide; ++i) at(i) = 128;  // the very bright keep half their weight
    return weights;
}

/// The chroma table stamped around the skin colour, held in by a soft box.
zellab::Plane<zellab::Byte> chromaMap(int cb, int cr, bool altTable) {
    zellab::Plane<zellab::Byte> map(kSide, kSide), box(kSide, kSide);
    const ChromaTable& table = altTable ? skinChromaTableAlt() : skinChromaTable();
    const int firstCb = limit(cb - 25), lastCb = limit(cb + 36), firstCr = limit(cr - 35),
              lastCr = limit(cr + 37);
    for (int row = firstCr; row <= lastCr; ++row)
        for (int column = firstCb; column <= lastCb; ++column)
            map.row(row)[column] =
                table[static_cast<std::size_t>(row - firstCr)][static_cast<std::size_t>(column - firstCb)];
    for (int row = limit(cr - 24); row <= limit(cr + 24); ++row)
        for (int column = limit(cb - 15); column <= limit(cb + 24); ++column) box.row(row)[column] = 255;
    zellab::StackBlurGray(box.view(), kBoxBlurRadius);
    for (int row = 0; row < kSide; ++row)
        for (int column = 0; column < kSide; ++column) {
            zellab::Byte& weight = map.row(row)[column];
            weight = static_cast<zellab::Byte>((kSkinBoxCurve[box.row(row)[column]] * weight) >> 8);
        }
    return map;
}

}  // namespace

SkinModel::SkinModel(const SkinStatistics& statistics, bool altTable)
    : m_low(limit(statistics.low)),
      m_high(limit(statistics.high)),
      m_chroma(chromaMap(statistics.cb, statistics.cr, altTable)) {
    m_edgeLow = outerEdge(m_low, altTable ? 1.6f : statistics.fromFace ? 1.9f : 2.0f);
    const int edgeHigh = outerEdge(m_high, altTable ? 0.33333334f : 0.29411763f);
    m_luma = lumaWeights({m_low, m_high, m_edgeLow, edgeHigh}, statistics.fromFace);
}

}  // namespace zelbeauty
