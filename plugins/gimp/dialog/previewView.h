#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "gimp/dialog/viewMap.h"
#include "gimp/run/pixels.h"
#include "zel/zel.h"

namespace zelgimp {

/// The layer before and after, side by side at a divider that can be dragged; zoomed by the wheel, moved by dragging.
/// Landmarks of faces lie on it as points that can be dragged as well.
class PreviewView {
public:
    struct Listener {
        std::function<void()> zoomed;
        /// A landmark was dragged and let go: see faces().
        std::function<void()> faceMoved;
        /// A place was chosen, in fractions of the picture: see askForPlace().
        std::function<void(double x, double y)> placeChosen;
    };

    PreviewView(std::shared_ptr<const Rgba> before, Listener listener);
    ~PreviewView();
    PreviewView(const PreviewView&) = delete;
    PreviewView& operator=(const PreviewView&) = delete;

    GtkWidget* widget() const { return m_area; }

    /// Null: nothing yet, the picture as it was is shown on both sides.
    void setAfter(std::shared_ptr<const Rgba> after);
    void showDivider(bool shown);

    /// In fractions of the picture.
    void setFaces(std::vector<zel_face> faces);
    const std::vector<zel_face>& faces() const { return m_faces; }
    void showFaces(bool shown);

    /// The next click chooses a place.
    void askForPlace(bool asks);

    double zoom() const { return m_map.zoom(); }
    void fit();
    /// About the window's middle.
    void zoomTo(double zoom);

private:
    struct SurfaceDestroy {
        void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    };
    /// A window's pixels, and the surface that shows them.
    struct Side {
        std::vector<std::uint32_t> pixels;
        std::unique_ptr<cairo_surface_t, SurfaceDestroy> surface;
    };
    enum class Drag { none, divider, landmark, picture };
    struct Landmark {
        std::size_t face = 0;
        int point = 0;
    };

    template <typename Event, gboolean (PreviewView::*handle)(const Event&)>
    void listen(const char* signal);
    gboolean draw(const GdkEventExpose& event);
    gboolean resized(const GdkEventConfigure& event);
    gboolean pressed(const GdkEventButton& event);
    gboolean released(const GdkEventButton& event);
    gboolean moved(const GdkEventMotion& event);
    gboolean scrolled(const GdkEventScroll& event);

    void refresh();
    void viewChanged();
    void drawSides(cairo_t* cairo);
    void drawDivider(cairo_t* cairo) const;
    void drawLandmarks(cairo_t* cairo) const;
    void drawCaption(cairo_t* cairo, const char* text, bool atRight) const;
    std::optional<Landmark> landmarkAt(Spot screen) const;
    bool isOnDivider(Spot screen) const;
    Spot pixelsOfFraction(const float (&point)[2]) const;
    void dragTo(Spot screen);
    void showCursor(Spot screen);
    Side makeSide(const Rgba& picture) const;

    GtkWidget* m_area;
    std::shared_ptr<const Rgba> m_before, m_after;
    Listener m_listener;
    ViewMap m_map;
    Side m_beforeSide, m_afterSide;
    double m_divider01 = 0.5;  // of the window's width
    bool m_hasDivider = true, m_hasLandmarks = false, m_asksForPlace = false;
    std::vector<zel_face> m_faces;
    Drag m_drag = Drag::none;
    Landmark m_dragged;
    Spot m_last;
};

}  // namespace zelgimp
