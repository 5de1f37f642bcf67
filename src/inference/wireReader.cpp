#include "inference/wireReader.h"

namespace zellab::platform {

namespace {

enum Wire : unsigned { kVarint = 0, kFixed64 = 1, kBytes = 2, kFixed32 = 5 };  // 3 and 4: groups, long gone

}  // namespace

bool WireReader::varint(std::uint64_t& value) {
    value = 0;
    for (unsigned shift = 0; shift < 64 && !m_rest.empty(); shift += 7) {
        const unsigned char byte = m_rest.front();
        m_rest = m_rest.subspan(1);
        value |= std::uint64_t{byte & 0x7Fu} << shift;
        if (byte < 0x80) return true;
    }
    return false;
}

bool WireReader::fixed(std::size_t width, std::uint64_t& value) {
    if (m_rest.size() < width) return false;
    value = 0;
    for (std::size_t i = width; i-- > 0;) value = value << 8 | m_rest[i];
    m_rest = m_rest.subspan(width);
    return true;
}

bool WireReader::lengthAndBytes(std::span<const unsigned char>& bytes) {
    std::uint64_t length = 0;
    if (!varint(length) || length > m_rest.size()) return false;
    bytes = m_rest.first(static_cast<std::size_t>(length));
    m_rest = m_rest.subspan(bytes.size());
    return true;
}

bool WireReader::next(WireField& field) {
    if (m_failed || m_rest.empty()) return false;
    std::uint64_t tag = 0;
    bool read = varint(tag) && (tag >> 3) != 0;
    field = {tag >> 3, (tag & 7) == kBytes, 0, {}};
    switch (tag & 7) {
        case kVarint:
            read = read && varint(field.value);
            break;
        case kFixed64:
            read = read && fixed(8, field.value);
            break;
        case kBytes:
            read = read && lengthAndBytes(field.bytes);
            break;
        case kFixed32:
            read = read && fixed(4, field.value);
            break;
        default:
            read = false;
    }
    m_failed = !read;
    return read;
}

bool WireReader::nextNumber(std::uint64_t& value) {
    if (m_failed || m_rest.empty()) return false;
    m_failed = !varint(value);
    return !m_failed;
}

}  // namespace zellab::platform
