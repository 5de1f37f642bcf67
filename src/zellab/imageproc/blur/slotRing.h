#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// The last few positions of a bundle of lines: position i lies in slot i modulo the capacity.
class SlotRing {
public:
    SlotRing(std::size_t capacity, std::size_t slotBytes)
        : m_capacity(capacity),
          m_slotBytes(slotBytes),
          m_bytes(std::make_unique_for_overwrite<Byte[]>(capacity * slotBytes)) {}

    std::size_t capacity() const { return m_capacity; }
    std::size_t slotBytes() const { return m_slotBytes; }
    Byte* slot(std::size_t position) const { return m_bytes.get() + position % m_capacity * m_slotBytes; }
    Byte* after(Byte* slot) const {
        Byte* const next = slot + m_slotBytes;
        return next == m_bytes.get() + m_capacity * m_slotBytes ? m_bytes.get() : next;
    }

private:
    std::size_t m_capacity, m_slotBytes;
    std::unique_ptr<Byte[]> m_bytes;
};

/// Visits the slots of successive positions; a position beyond an end of the line is that end.
class SlotWalk {
public:
    SlotWalk(const SlotRing& ring, std::int64_t position, int length)
        : m_ring(ring), m_position(position), m_last(length - 1) {
        const std::int64_t inside = position < 0 ? 0 : position < m_last ? position : m_last;
        m_slot = ring.slot(static_cast<std::size_t>(inside));
    }

    const Byte* next() {
        const Byte* const current = m_slot;
        if (m_position >= 0 && m_position < m_last) m_slot = m_ring.after(m_slot);
        ++m_position;
        return current;
    }

private:
    const SlotRing& m_ring;
    std::int64_t m_position, m_last;
    Byte* m_slot;
};

}  // namespace zellab
