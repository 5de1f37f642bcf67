#include "gimp/dialog/viewMap.h"

#include <algorithm>

namespace zelgimp {

namespace {

/// A picture larger than the window covers it; a smaller one lies in its middle.
double inside(double start, double length, double shown) {
    return shown >= length ? (length - shown) / 2 : std::clamp(start, 0.0, length - shown);
}

}  // namespace

void ViewMap::resize(int viewWidth, int viewHeight) {
    m_viewWidth = std::max(viewWidth, 1);
    m_viewHeight = std::max(viewHeight, 1);
    if (m_fitted)
        fit();
    else
        keepInside();
}

void ViewMap::fit() {
    m_zoom = std::min(
        {1.0, static_cast<double>(m_viewWidth) / m_width, static_cast<double>(m_viewHeight) / m_height});
    m_fitted = true;
    keepInside();
}

void ViewMap::zoomTo(double zoom, Spot at) {
    const Spot held = toPicture(at);
    m_zoom = std::clamp(zoom, kLeastZoom, kMostZoom);
    m_fitted = false;
    m_left = held.x - at.x / m_zoom;
    m_top = held.y - at.y / m_zoom;
    keepInside();
}

void ViewMap::pan(double dx, double dy) {
    m_left -= dx / m_zoom;
    m_top -= dy / m_zoom;
    keepInside();
}

Spot ViewMap::toScreen(Spot picture) const {
    return {(picture.x - m_left) * m_zoom, (picture.y - m_top) * m_zoom};
}

Spot ViewMap::toPicture(Spot screen) const {
    return {m_left + screen.x / m_zoom, m_top + screen.y / m_zoom};
}

void ViewMap::keepInside() {
    m_left = inside(m_left, m_width, m_viewWidth / m_zoom);
    m_top = inside(m_top, m_height, m_viewHeight / m_zoom);
}

}  // namespace zelgimp
