#pragma once

#include <cstdint>
#include <vector>

namespace zellab {

/// Numbers 64-bit keys from 0 in the order of their first appearance. One flat array of slots with linear
/// probing, doubled at half full.
class KeyTable {
public:
    KeyTable() : m_slots(kFirstSlots), m_mask(kFirstSlots - 1) {}

    /// The key's number, a new one if it is new.
    int numberOf(std::uint64_t key) {
        if (2 * m_keys.size() >= m_slots.size()) grow();
        Slot& slot = m_slots[slotOf(key)];
        if (slot.number < 0) {
            slot = {key, static_cast<int>(m_keys.size())};
            m_keys.push_back(key);
        }
        return slot.number;
    }
    /// The key's number, or -1.
    int find(std::uint64_t key) const { return m_slots[slotOf(key)].number; }
    /// All keys by number.
    const std::vector<std::uint64_t>& keys() const { return m_keys; }

private:
    struct Slot {
        std::uint64_t key = 0;
        int number = -1;  // below 0: free
    };
    static constexpr std::size_t kFirstSlots = std::size_t{1} << 15;

    std::size_t slotOf(std::uint64_t key) const {
        // A multiplicative hash: 2^64 over the golden ratio, whose upper bits spread neighbouring keys.
        std::size_t i = static_cast<std::size_t>((key * 0x9E3779B97F4A7C15u) >> 20) & m_mask;
        while (m_slots[i].number >= 0 && m_slots[i].key != key) i = (i + 1) & m_mask;
        return i;
    }

    void grow() {
        m_slots.assign(2 * m_slots.size(), Slot());
        m_mask = m_slots.size() - 1;
        for (std::size_t i = 0; i < m_keys.size(); ++i)
            m_slots[slotOf(m_keys[i])] = {m_keys[i], static_cast<int>(i)};
    }

    std::vector<Slot> m_slots;
    std::size_t m_mask;
    std::vector<std::uint64_t> m_keys;
};

}  // namespace zellab
