#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <utility>
#include <vector>

namespace zellab::gl {

/// FNV-1a over the four bytes of a key, low byte first.
constexpr std::uint32_t hashKey(std::uint32_t key) {
    std::uint32_t hash = 0x811C9DC5u;
    for (int shift = 0; shift < 32; shift += 8) hash = (hash ^ ((key >> shift) & 0xFFu)) * 16777619u;
    return hash;
}

/// A hash table with 32-bit keys (GL enums, uniform locations, shader keys). Its entries are walked in the
/// order in which their keys came, so that GL calls made from it have a fixed order.
template <typename Value>
class ParameterTable {
public:
    struct Entry {
        std::uint32_t key;
        Value value;
        /// The next entry of the same bucket.
        Entry* next;
    };

    ParameterTable() = default;
    ParameterTable(const ParameterTable& other) {
        for (const Entry& entry : other) set(entry.key, entry.value);
    }
    ParameterTable& operator=(const ParameterTable& other) {
        ParameterTable copy(other);
        swap(copy);
        return *this;
    }
    ~ParameterTable() = default;

    void swap(ParameterTable& other) noexcept {
        m_entries.swap(other.m_entries);
        m_buckets.swap(other.m_buckets);
    }

    /// Inserts the value or replaces the one that the key had.
    void set(std::uint32_t key, Value value) {
        if (Entry* entry = findEntry(key)) {
            entry->value = std::move(value);
            return;
        }
        if (m_entries.size() >= m_buckets.size()) grow();
        m_entries.push_back({key, std::move(value), nullptr});
        link(m_entries.back());
    }

    /// Null where the key is unknown; valid until the table is cleared or assigned.
    const Value* find(std::uint32_t key) const {
        const Entry* entry = findEntry(key);
        return entry ? &entry->value : nullptr;
    }

    std::size_t size() const { return m_entries.size(); }
    auto begin() const { return m_entries.begin(); }
    auto end() const { return m_entries.end(); }
    void clear() { ParameterTable().swap(*this); }

private:
    /// A power of two, as are all later counts. The load never exceeds one entry a bucket.
    static constexpr std::size_t kInitialBuckets = 8;

    std::size_t bucketOf(std::uint32_t key) const { return hashKey(key) & (m_buckets.size() - 1); }

    Entry* findEntry(std::uint32_t key) const {
        for (Entry* entry = m_buckets[bucketOf(key)]; entry; entry = entry->next)
            if (entry->key == key) return entry;
        return nullptr;
    }

    void link(Entry& entry) {
        Entry*& head = m_buckets[bucketOf(entry.key)];
        entry.next = head;
        head = &entry;
    }

    void grow() {
        m_buckets.assign(m_buckets.size() * 2, nullptr);
        for (Entry& entry : m_entries) link(entry);
    }

    std::list<Entry> m_entries;
    std::vector<Entry*> m_buckets = std::vector<Entry*>(kInitialBuckets, nullptr);
};

}  // namespace zellab::gl
