#ifndef ZEL_ZEL_HPP
#define ZEL_ZEL_HPP

// The C interface for C++17: objects that clean up after themselves, and exceptions in place of statuses. Nothing
// of it lies in the library: whatever compiler builds a program, it meets zel.h alone.

#include <zel/zel.h>

#include <cstddef>
#include <deque>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace libzel {

/// A call failed; what() says why.
class Error : public std::runtime_error {
public:
    Error(zel_status status, const std::string& why) : std::runtime_error(why), m_status(status) {}
    zel_status status() const { return m_status; }

private:
    zel_status m_status;
};

/// Throws the calling thread's last failure.
inline void require(zel_status status) {
    if (status != ZEL_OK) throw Error(status, zel_message());
}

/// A struct of the interface with its size told and everything else zero.
template <typename Struct>
Struct sized() {
    Struct made{};
    made.struct_size = sizeof made;
    return made;
}

template <typename T, void (*destroy)(T*)>
struct Destroyer {
    void operator()(T* object) const { destroy(object); }
};
template <typename T, void (*destroy)(T*)>
using Handle = std::unique_ptr<T, Destroyer<T, destroy>>;

/// The object that make(&out) hands out.
template <typename Owner, typename Make>
Owner made(const Make& make) {
    typename Owner::pointer object = nullptr;
    require(make(&object));
    return Owner(object);
}

using Context = Handle<zel_context, zel_context_destroy>;
using Faces = Handle<zel_faces, zel_faces_destroy>;
using Picture = Handle<zel_picture, zel_picture_destroy>;
using Portrait = Handle<zel_portrait, zel_portrait_destroy>;

inline Context createContext(const zel_settings* settings = nullptr) {
    return made<Context>([&](zel_context** out) { return zel_context_create(settings, out); });
}

inline Faces findFaces(zel_context* context, const zel_pixels& pixels) {
    return made<Faces>([&](zel_faces** out) { return zel_find_faces(context, &pixels, out); });
}

inline Faces facesFromJson(const std::string& text) {
    return made<Faces>([&](zel_faces** out) { return zel_faces_from_json(text.data(), text.size(), out); });
}

inline std::string toJson(zel_faces* faces) {
    const char* text = nullptr;
    std::size_t length = 0;
    require(zel_faces_to_json(faces, &text, &length));
    return std::string(text, length);
}

inline zel_face faceAt(const zel_faces* faces, std::size_t index) {
    zel_face face;
    require(zel_faces_get(faces, index, &face));
    return face;
}

inline zel_pixels pixelsOf(zel_picture* picture) {
    zel_pixels pixels;
    require(zel_picture_pixels(picture, &pixels));
    return pixels;
}

/// Parameters by name, as text. May be moved, and read by any number of threads at once.
class Values {
public:
    Values() = default;
    Values(std::initializer_list<std::pair<const char*, const char*>> values) {
        for (const auto& value : values) set(value.first, value.second);
    }
    Values(Values&&) = default;
    Values& operator=(Values&&) = default;

    void set(std::string name, std::string text) {
        m_texts.emplace_back(std::move(name), std::move(text));
        m_list.push_back({m_texts.back().first.c_str(), m_texts.back().second.c_str(), 0});
    }
    /// Valid until the next change.
    const std::vector<zel_value>& list() const { return m_list; }

private:
    std::deque<std::pair<std::string, std::string>> m_texts;  // they stay where they are
    std::vector<zel_value> m_list;
};

/// Changes the pixels by one effect.
/// @param faces  null: none
inline void apply(zel_context* context, const std::string& effect, const zel_pixels& pixels,
                  const Values& values = {}, const zel_faces* faces = nullptr) {
    auto inputs = sized<zel_inputs>();
    const auto& list = values.list();
    inputs.values = list.data();
    inputs.value_count = list.size();
    inputs.faces = faces;
    require(zel_apply(context, effect.c_str(), &pixels, &inputs));
}

/// One of the networks that the library makes use of, as zel_network tells it.
struct Network {
    std::string name, purpose, path, problem;
};

inline std::vector<Network> networks(zel_context* context) {
    std::vector<Network> all;
    for (std::size_t i = 0; i < zel_network_count(); ++i) {
        const zel_network* network = nullptr;
        require(zel_network_at(context, i, &network));
        all.push_back({network->name, network->purpose, network->path, network->problem});
    }
    return all;
}

}  // namespace libzel

#endif
