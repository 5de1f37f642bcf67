#include "cli/studio/planes.h"

#include <cstdint>
#include <cstdio>

#include "cli/studio/message.h"

namespace zelcli::studio {

namespace {

constexpr std::size_t kMostBytes = std::size_t{256} << 20;

/// FNV-1a, 64 bits: the page's own planes are told apart, nobody is kept from making two of one name.
std::uint64_t hashOf(const std::string& bytes) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char byte : bytes) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3U;
    return hash;
}

}  // namespace

std::string Planes::keep(int width, int height, const std::string& samples) {
    if (samples.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
        throw Refused(400, "the plane's size and its bytes do not agree");
    char name[48];
    std::snprintf(name, sizeof name, "%dx%d-%016llx", width, height,
                  static_cast<unsigned long long>(hashOf(samples)));
    const std::lock_guard lock(m_mutex);
    for (const Kept& kept : m_kept)
        if (kept.name == name) return name;
    m_kept.push_front({name, std::make_shared<Mask>(Mask{width, height, {samples.begin(), samples.end()}})});
    m_bytes += samples.size();
    while (m_bytes > kMostBytes && m_kept.size() > 1) {
        m_bytes -= m_kept.back().plane->samples.size();
        m_kept.pop_back();
    }
    return name;
}

std::shared_ptr<Mask> Planes::find(const std::string& name) {
    const std::lock_guard lock(m_mutex);
    for (auto kept = m_kept.begin(); kept != m_kept.end(); ++kept)
        if (kept->name == name) {
            m_kept.splice(m_kept.begin(), m_kept, kept);
            return m_kept.front().plane;
        }
    throw Refused(410, "a mask is no longer here");
}

}  // namespace zelcli::studio
