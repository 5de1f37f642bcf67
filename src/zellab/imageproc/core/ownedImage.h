#pragma once

#include <cstring>
#include <vector>

#include "zellab/imageproc/core/imageView.h"

/// What owns pixels. Both types move, and never copy by accident: a copy is made by copyOf and seen as such.
/// A failing allocation throws std::bad_alloc.

namespace zellab {

/// A plane that owns its samples, zero-filled at first. A side below 1 makes an empty plane.
template <typename T>
class Plane {
public:
    Plane() = default;
    Plane(int width, int height) : m_samples(sampleCount(width, height)), m_width(width), m_height(height) {}
    Plane(Plane&&) noexcept = default;
    Plane& operator=(Plane&&) noexcept = default;
    Plane(const Plane&) = delete;
    Plane& operator=(const Plane&) = delete;

    int width() const { return m_width; }
    int height() const { return m_height; }
    std::size_t size() const { return m_samples.size(); }
    T* data() { return m_samples.data(); }
    const T* data() const { return m_samples.data(); }
    T* row(int y) { return view().row(y); }
    const T* row(int y) const { return view().row(y); }
    PlaneView<T> view() { return {m_samples.data(), m_width, m_height}; }
    PlaneView<const T> view() const { return {m_samples.data(), m_width, m_height}; }

private:
    std::vector<T> m_samples;
    int m_width = 0, m_height = 0;
};

/// An RGBA picture that owns its pixels, zero-filled at first. A side below 1 makes an empty picture.
class RgbaImage {
public:
    RgbaImage() = default;
    RgbaImage(int width, int height)
        : m_bytes(sampleCount(width, height, ImageView::kChannels)), m_width(width), m_height(height) {}
    RgbaImage(RgbaImage&&) noexcept = default;
    RgbaImage& operator=(RgbaImage&&) noexcept = default;
    RgbaImage(const RgbaImage&) = delete;
    RgbaImage& operator=(const RgbaImage&) = delete;

    int width() const { return m_width; }
    int height() const { return m_height; }
    std::size_t size() const { return m_bytes.size(); }
    Byte* data() { return m_bytes.data(); }
    const Byte* data() const { return m_bytes.data(); }
    Byte* row(int y) { return view().row(y); }
    const Byte* row(int y) const { return view().row(y); }
    ImageView view() { return {m_bytes.data(), m_width, m_height}; }
    ConstImageView view() const { return {m_bytes.data(), m_width, m_height}; }

private:
    std::vector<Byte> m_bytes;
    int m_width = 0, m_height = 0;
};

namespace detail {

/// Copies row by row, so that either side may have rows longer than its width.
template <typename From, typename To>
void copyRows(const From& from, To to, std::size_t rowBytes) {
    for (int y = 0; y < from.height; ++y) std::memcpy(to.row(y), from.row(y), rowBytes);
}

}  // namespace detail

/// Copies `from` into `to`, which has its size and does not overlap it.
inline void copyPixels(ConstImageView from, ImageView to) {
    detail::copyRows(from, to, sampleCount(from.width, 1, ImageView::kChannels));
}
template <typename T>
void copyPixels(PlaneView<const T> from, PlaneView<T> to) {
    detail::copyRows(from, to, sampleCount(from.width, 1) * sizeof(T));
}

/// A picture of its own with the pixels of `view`; an empty one where the view is not valid.
inline RgbaImage copyOf(ConstImageView view) {
    if (!view.valid()) return {};
    RgbaImage copy(view.width, view.height);
    copyPixels(view, copy.view());
    return copy;
}
inline RgbaImage copyOf(ImageView view) {
    return copyOf(ConstImageView(view));
}
template <typename T>
Plane<std::remove_const_t<T>> copyOf(PlaneView<T> view) {
    if (!view.valid()) return {};
    Plane<std::remove_const_t<T>> copy(view.width, view.height);
    copyPixels<std::remove_const_t<T>>(view, copy.view());
    return copy;
}

}  // namespace zellab
