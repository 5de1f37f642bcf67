#include "gimp/dialog/previewView.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "gimp/dialog/signals.h"
#include "gimp/dialog/viewPixels.h"

namespace zelgimp {

namespace {

/// One turn of the wheel.
constexpr double kZoomStep = 1.25;
/// Sizes in lines of text, so that they grow with it.
constexpr double kLandmarkRadius = 0.16, kReach = 0.5, kCaptionGap = 0.4, kHandleWidth = 0.5,
                 kHandleHeight = 1.5;
constexpr double kPi = 3.14159265358979323846;
/// Where the divider is taken hold of, as a share of the height: not over a face.
constexpr double kHandlePlace = 0.9;
/// What lies beside the picture.
constexpr std::uint32_t kGround = 0xff505050;

struct CairoDestroy {
    void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
};
using Cairo = std::unique_ptr<cairo_t, CairoDestroy>;

template <typename Event>
Spot spotOf(const Event& event) {
    return {event.x, event.y};
}

double distance(Spot a, Spot b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

}  // namespace

template <typename Event, gboolean (PreviewView::*handle)(const Event&)>
void PreviewView::listen(const char* signal) {
    onEvent<Event>(
        m_area, signal,
        [](GtkWidget*, Event* event, gpointer self) {
            return (static_cast<PreviewView*>(self)->*handle)(*event);
        },
        this);
}

PreviewView::PreviewView(std::shared_ptr<const Rgba> before, Listener listener)
    : m_area(gtk_drawing_area_new()),
      m_before(std::move(before)),
      m_listener(std::move(listener)),
      m_map(m_before->width, m_before->height) {
    g_object_ref_sink(m_area);
    gtk_widget_add_events(
        m_area, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK | GDK_POINTER_MOTION_MASK | GDK_SCROLL_MASK);
    listen<GdkEventExpose, &PreviewView::draw>("expose-event");
    listen<GdkEventConfigure, &PreviewView::resized>("configure-event");
    listen<GdkEventButton, &PreviewView::pressed>("button-press-event");
    listen<GdkEventButton, &PreviewView::released>("button-release-event");
    listen<GdkEventMotion, &PreviewView::moved>("motion-notify-event");
    listen<GdkEventScroll, &PreviewView::scrolled>("scroll-event");
}

PreviewView::~PreviewView() {
    g_signal_handlers_disconnect_matched(m_area, G_SIGNAL_MATCH_DATA, 0, 0, nullptr, nullptr, this);
    g_object_unref(m_area);
}

void PreviewView::setAfter(std::shared_ptr<const Rgba> after) {
    m_after = std::move(after);
    m_afterSide = {};
    refresh();
}

void PreviewView::showDivider(bool shown) {
    m_hasDivider = shown;
    refresh();
}

void PreviewView::setFaces(std::vector<zel_face> faces) {
    m_faces = std::move(faces);
    m_drag = Drag::none;
    refresh();
}

void PreviewView::showFaces(bool shown) {
    m_hasLandmarks = shown;
    refresh();
}

void PreviewView::askForPlace(bool asks) {
    m_asksForPlace = asks;
}

void PreviewView::fit() {
    m_map.fit();
    viewChanged();
}

void PreviewView::zoomTo(double zoom) {
    m_map.zoomTo(zoom, {m_map.viewWidth() / 2.0, m_map.viewHeight() / 2.0});
    viewChanged();
}

gboolean PreviewView::resized(const GdkEventConfigure& event) {
    m_map.resize(event.width, event.height);
    viewChanged();
    return FALSE;
}

void PreviewView::viewChanged() {
    m_beforeSide = {};
    m_afterSide = {};
    refresh();
    m_listener.zoomed();
}

void PreviewView::refresh() {
    gtk_widget_queue_draw(m_area);
}

PreviewView::Side PreviewView::makeSide(const Rgba& picture) const {
    Side side;
    side.pixels = viewPixels(picture, m_map, kGround);
    side.surface.reset(cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(side.pixels.data()), CAIRO_FORMAT_RGB24, m_map.viewWidth(),
        m_map.viewHeight(), 4 * m_map.viewWidth()));
    return side;
}

gboolean PreviewView::draw(const GdkEventExpose& event) {
    const Cairo cairo(gdk_cairo_create(event.window));
    gdk_cairo_region(cairo.get(), event.region);
    cairo_clip(cairo.get());
    drawSides(cairo.get());
    if (m_hasDivider) drawDivider(cairo.get());
    if (m_hasLandmarks) drawLandmarks(cairo.get());
    return TRUE;
}

void PreviewView::drawSides(cairo_t* cairo) {
    if (!m_beforeSide.surface) m_beforeSide = makeSide(*m_before);
    if (m_after && !m_afterSide.surface) m_afterSide = makeSide(*m_after);
    cairo_set_source_surface(cairo, (m_after ? m_afterSide : m_beforeSide).surface.get(), 0, 0);
    cairo_paint(cairo);
    if (!m_hasDivider || !m_after) return;
    cairo_save(cairo);
    cairo_rectangle(cairo, 0, 0, std::round(m_divider01 * m_map.viewWidth()), m_map.viewHeight());
    cairo_clip(cairo);
    cairo_set_source_surface(cairo, m_beforeSide.surface.get(), 0, 0);
    cairo_paint(cairo);
    cairo_restore(cairo);
}

void PreviewView::drawDivider(cairo_t* cairo) const {
    const double line = lineHeight(m_area), x = std::round(m_divider01 * m_map.viewWidth());
    const double middle = kHandlePlace * m_map.viewHeight();
    cairo_set_source_rgba(cairo, 0, 0, 0, 0.5);
    cairo_rectangle(cairo, x - 1.5, 0, 3, m_map.viewHeight());
    cairo_fill(cairo);
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_rectangle(cairo, x - 0.5, 0, 1, m_map.viewHeight());
    cairo_rectangle(cairo, x - kHandleWidth / 2 * line, middle - kHandleHeight / 2 * line,
                    kHandleWidth * line, kHandleHeight * line);
    cairo_fill(cairo);
    drawCaption(cairo, "Before", false);
    drawCaption(cairo, "After", true);
}

/// At the upper edge, on its own side of the divider.
void PreviewView::drawCaption(cairo_t* cairo, const char* text, bool atRight) const {
    PangoLayout* const layout = gtk_widget_create_pango_layout(m_area, text);
    int width = 0, height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);
    const double gap = kCaptionGap * height, divider = m_divider01 * m_map.viewWidth();
    const double room = (atRight ? m_map.viewWidth() - divider : divider) - 4 * gap;
    if (width <= room) {
        const double x = atRight ? m_map.viewWidth() - width - 2 * gap : 2 * gap;
        cairo_set_source_rgba(cairo, 0, 0, 0, 0.55);
        cairo_rectangle(cairo, x - gap, gap, width + 2 * gap, height + gap);
        cairo_fill(cairo);
        cairo_set_source_rgb(cairo, 1, 1, 1);
        cairo_move_to(cairo, x, 1.5 * gap);
        pango_cairo_show_layout(cairo, layout);
    }
    g_object_unref(layout);
}

Spot PreviewView::pixelsOfFraction(const float (&point)[2]) const {
    return {double{point[0]} * m_before->width, double{point[1]} * m_before->height};
}

void PreviewView::drawLandmarks(cairo_t* cairo) const {
    const double radius = std::max(1.5, kLandmarkRadius * lineHeight(m_area));
    for (const zel_face& face : m_faces)
        for (const auto& point : face.points) {
            const Spot at = m_map.toScreen(pixelsOfFraction(point));
            cairo_new_path(cairo);
            cairo_arc(cairo, at.x, at.y, radius, 0, 2 * kPi);
            cairo_set_source_rgb(cairo, 1, 0.85, 0.2);
            cairo_fill_preserve(cairo);
            cairo_set_source_rgba(cairo, 0, 0, 0, 0.75);
            cairo_set_line_width(cairo, radius / 2);
            cairo_stroke(cairo);
        }
}

std::optional<PreviewView::Landmark> PreviewView::landmarkAt(Spot screen) const {
    std::optional<Landmark> nearest;
    double least = kReach * lineHeight(m_area);
    for (std::size_t f = 0; f < m_faces.size(); ++f)
        for (int i = 0; i < ZEL_LANDMARKS; ++i) {
            const double away = distance(m_map.toScreen(pixelsOfFraction(m_faces[f].points[i])), screen);
            if (away > least) continue;
            least = away;
            nearest = Landmark{f, i};
        }
    return nearest;
}

bool PreviewView::isOnDivider(Spot screen) const {
    return m_hasDivider &&
           std::abs(screen.x - m_divider01 * m_map.viewWidth()) <= kReach * lineHeight(m_area);
}

gboolean PreviewView::pressed(const GdkEventButton& event) {
    if (event.type != GDK_BUTTON_PRESS || event.button > 2) return FALSE;
    m_last = spotOf(event);
    m_drag = Drag::picture;
    if (event.button == 2) return TRUE;
    if (m_asksForPlace) {
        const Spot place = m_map.toPicture(m_last);
        m_drag = Drag::none;
        m_listener.placeChosen(std::clamp(place.x / m_before->width, 0.0, 1.0),
                               std::clamp(place.y / m_before->height, 0.0, 1.0));
        return TRUE;
    }
    const auto landmark = m_hasLandmarks ? landmarkAt(m_last) : std::nullopt;
    if (landmark) {
        m_dragged = *landmark;
        m_drag = Drag::landmark;
    } else if (isOnDivider(m_last)) {
        m_drag = Drag::divider;
    }
    return TRUE;
}

gboolean PreviewView::released(const GdkEventButton&) {
    const Drag ended = std::exchange(m_drag, Drag::none);
    if (ended == Drag::landmark) m_listener.faceMoved();
    return TRUE;
}

gboolean PreviewView::moved(const GdkEventMotion& event) {
    const Spot screen = spotOf(event);
    if (m_drag == Drag::none)
        showCursor(screen);
    else
        dragTo(screen);
    m_last = screen;
    return TRUE;
}

void PreviewView::dragTo(Spot screen) {
    if (m_drag == Drag::picture) {
        m_map.pan(screen.x - m_last.x, screen.y - m_last.y);
        viewChanged();
    } else if (m_drag == Drag::divider) {
        m_divider01 = std::clamp(screen.x / m_map.viewWidth(), 0.0, 1.0);
    } else {
        float(&point)[2] = m_faces[m_dragged.face].points[m_dragged.point];
        const Spot place = m_map.toPicture(screen);
        point[0] = static_cast<float>(std::clamp(place.x / m_before->width, 0.0, 1.0));
        point[1] = static_cast<float>(std::clamp(place.y / m_before->height, 0.0, 1.0));
    }
    refresh();
}

/// What a press would take hold of.
void PreviewView::showCursor(Spot screen) {
    const bool onLandmark = m_hasLandmarks && landmarkAt(screen);
    const GdkCursorType type = m_asksForPlace        ? GDK_CROSSHAIR
                               : onLandmark          ? GDK_HAND2
                               : isOnDivider(screen) ? GDK_SB_H_DOUBLE_ARROW
                                                     : GDK_FLEUR;
    GdkCursor* const cursor = gdk_cursor_new_for_display(gtk_widget_get_display(m_area), type);
    gdk_window_set_cursor(gtk_widget_get_window(m_area), cursor);
    gdk_cursor_unref(cursor);
}

gboolean PreviewView::scrolled(const GdkEventScroll& event) {
    if (event.direction != GDK_SCROLL_UP && event.direction != GDK_SCROLL_DOWN) return FALSE;
    const double step = event.direction == GDK_SCROLL_UP ? kZoomStep : 1 / kZoomStep;
    m_map.zoomTo(m_map.zoom() * step, spotOf(event));
    viewChanged();
    return TRUE;
}

}  // namespace zelgimp
