#pragma once

#include "gimp/run/pixels.h"

namespace zelgimp {

/// A place, in pixels of a picture or of the screen.
struct Spot {
    double x = 0, y = 0;
};

/// Where a picture lies in a window on it: how large, and which part.
class ViewMap {
public:
    /// Screen pixels for one of the picture.
    static constexpr double kLeastZoom = 1.0 / 64, kMostZoom = 16;

    ViewMap() = default;
    ViewMap(int pictureWidth, int pictureHeight) : m_width(pictureWidth), m_height(pictureHeight) {}

    /// The window's size. A picture that was fitted stays so.
    void resize(int viewWidth, int viewHeight);
    /// The whole picture, as large as it can be seen, but not beyond its own size.
    void fit();
    /// Another zoom; what lies at the place on the screen stays there.
    void zoomTo(double zoom, Spot at);
    /// Moves the picture along with the pointer.
    void pan(double dx, double dy);

    double zoom() const { return m_zoom; }
    bool isFitted() const { return m_fitted; }
    int viewWidth() const { return m_viewWidth; }
    int viewHeight() const { return m_viewHeight; }
    Spot toScreen(Spot picture) const;
    Spot toPicture(Spot screen) const;

private:
    void keepInside();

    int m_width = 1, m_height = 1, m_viewWidth = 1, m_viewHeight = 1;
    double m_zoom = 1, m_left = 0, m_top = 0;  // the picture's place that lies in the window's corner
    bool m_fitted = true;
};

}  // namespace zelgimp
