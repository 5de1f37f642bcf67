#pragma once

#include <algorithm>
#include <cstring>

#include "zellab/imageproc/blur/slotRing.h"
#include "zellab/imageproc/blur/stackBlurLanes.h"
#include "zellab/imageproc/blur/stackBlurPasses.h"
#include "zellab/imageproc/core/tileTranspose.h"

namespace zellab {

/// A few neighbouring rows on their way through the blur along x. They are turned, so that the samples of
/// all rows at one position lie together and take the same road as a strip of columns.
class RowTile {
public:
    /// Bytes of one position of all rows.
    static constexpr int kBytes = 64;
    static int rowLimit(int channels) { return kBytes / channels; }

    /// The first row, and no more than rowLimit rows.
    RowTile(const BlurSource& source, int top, int rows) : m_source(source), m_top(top), m_rows(rows) {}

    /// Reads pixels x to x + kChunk - 1, as far as the row goes, into successive slots of kBytes.
    void load(int x, Byte* slots) {
        const int count = std::min(kChunk, m_source.width - x);
        for (int row = 0; row < m_rows; ++row) {
            const Byte* source =
                m_source.data + (m_top + row) * m_source.rowBytes + std::ptrdiff_t{m_source.pixelBytes} * x;
            loadRow(source, count, plainRow(row));
        }
        if (m_source.channels == 4) {
            for (int row = 0; row < m_rows; row += 4)
                for (int px = 0; px < kChunk; px += 4)
                    transposePixels4x4(plainRow(row) + 4 * px, plainStride(), slots + px * kBytes + 4 * row,
                                       kBytes);
        } else {
            for (int row = 0; row < m_rows; row += 8)
                for (int px = 0; px < kChunk; px += 8)
                    transposeBytes8x8(plainRow(row) + px, plainStride(), slots + px * kBytes + row, kBytes);
        }
    }

    /// Writes pixels x to x + kChunk - 1, as far as the row goes, to the tile's rows of the target.
    void store(int x, const Byte* slots, const SlotRing& target) {
        if (m_source.channels == 4) {
            for (int row = 0; row < m_rows; row += 4)
                for (int px = 0; px < kChunk; px += 4)
                    transposePixels4x4(slots + px * kBytes + 4 * row, kBytes, plainRow(row) + 4 * px,
                                       plainStride());
        } else {
            for (int row = 0; row < m_rows; row += 8)
                for (int px = 0; px < kChunk; px += 8)
                    transposeBytes8x8(slots + px * kBytes + row, kBytes, plainRow(row) + px, plainStride());
        }
        const int count = std::min(kChunk, m_source.width - x);
        Byte* slot = target.slot(static_cast<std::size_t>(m_top));
        for (int row = 0; row < m_rows; ++row, slot = target.after(slot))
            copyPixels(plainRow(row), count, slot + std::ptrdiff_t{m_source.channels} * x);
    }

private:
    std::size_t plainStride() const { return static_cast<std::size_t>(kChunk * m_source.channels); }
    Byte* plainRow(int row) { return m_plain + row * kChunk * m_source.channels; }

    void loadRow(const Byte* source, int count, Byte* plain) const {
        if (m_source.pixelBytes == m_source.channels) return copyPixels(source, count, plain);
        for (int i = 0; i < count; ++i) plain[i] = source[std::ptrdiff_t{m_source.pixelBytes} * i];
    }

    /// A whole chunk is copied with a size that the compiler knows.
    void copyPixels(const Byte* source, int count, Byte* target) const {
        if (count < kChunk)
            std::memcpy(target, source, static_cast<std::size_t>(count * m_source.channels));
        else if (m_source.channels == 4)
            std::memcpy(target, source, kChunk * 4);
        else
            std::memcpy(target, source, kChunk);
    }

    const BlurSource& m_source;
    int m_top, m_rows;
    alignas(32) Byte m_plain[kBytes * kChunk] = {};  // rows as they lie in a picture
};

}  // namespace zellab
