#include "gimp/dialog/previewPanel.h"

#include <cmath>
#include <cstdio>
#include <utility>

#include "gimp/dialog/signals.h"

namespace zelgimp {

namespace {

constexpr double kZoomStep = 1.5;
/// The preview is at least so large, in lines of text.
constexpr int kLeastWidth = 28, kLeastHeight = 30;

}  // namespace

PreviewPanel::PreviewPanel(std::shared_ptr<const Rgba> before, Listener listener)
    : m_listener(std::move(listener)), m_box(gtk_vbox_new(FALSE, 0)) {
    gtk_box_set_spacing(GTK_BOX(m_box), gapOf(m_box));
    GtkWidget* const row = zoomRow();
    m_view = std::make_unique<PreviewView>(
        std::move(before),
        PreviewView::Listener{[this] { showZoom(); }, [this] { m_listener.faceMoved(); },
                              [this](double x, double y) { m_listener.placeChosen(x, y); }});
    const auto line = static_cast<int>(lineHeight(m_box));
    gtk_widget_set_size_request(m_view->widget(), kLeastWidth * line, kLeastHeight * line);
    GtkWidget* const frame = gtk_frame_new(nullptr);
    gtk_frame_set_shadow_type(GTK_FRAME(frame), GTK_SHADOW_IN);
    gtk_container_add(GTK_CONTAINER(frame), m_view->widget());
    gtk_box_pack_start(GTK_BOX(m_box), frame, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(m_box), row, FALSE, FALSE, 0);
}

GtkWidget* PreviewPanel::addButton(GtkWidget* box, const char* label, const char* tooltip,
                                   std::function<void()> clicked) {
    GtkWidget* const button = gtk_button_new_with_label(label);
    gtk_widget_set_tooltip_text(button, tooltip);
    onSignal(button, "clicked", std::move(clicked));
    gtk_box_pack_start(GTK_BOX(box), button, FALSE, FALSE, 0);
    return button;
}

GtkWidget* PreviewPanel::addSwitch(GtkWidget* box, const char* label, const char* tooltip, bool on,
                                   std::function<void(bool)> toggled) {
    GtkWidget* const button = gtk_check_button_new_with_label(label);
    gtk_widget_set_tooltip_text(button, tooltip);
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(button), on);
    onSignal(button, "toggled", [button, told = std::move(toggled)] {
        told(gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(button)) != 0);
    });
    gtk_box_pack_start(GTK_BOX(box), button, FALSE, FALSE, 0);
    return button;
}

GtkWidget* PreviewPanel::zoomRow() {
    GtkWidget* const row = gtk_hbox_new(FALSE, gapOf(m_box));
    addButton(row, "−", "Show more of the picture", [this] { m_view->zoomTo(m_view->zoom() / kZoomStep); });
    m_zoomLabel = gtk_label_new("");
    gtk_label_set_width_chars(GTK_LABEL(m_zoomLabel), 6);
    gtk_box_pack_start(GTK_BOX(row), m_zoomLabel, FALSE, FALSE, 0);
    addButton(row, "+", "Show it larger", [this] { m_view->zoomTo(m_view->zoom() * kZoomStep); });
    addButton(row, "Fit", "Show the whole layer", [this] { m_view->fit(); });
    addButton(row, "1:1", "Show the layer's own pixels", [this] { m_view->zoomTo(1); });
    addSwitch(row, "Divider", "The layer as it was, left of a line that can be dragged", true,
              [this](bool on) { m_view->showDivider(on); });
    m_facesSwitch = addSwitch(row, "Face points", "The landmarks of faces, which can be dragged", false,
                              [this](bool on) { m_view->showFaces(on); });
    m_facesButton = addButton(row, "Find again", "Find the faces anew, and forget what was dragged",
                              [this] { m_listener.findFacesAgain(); });
    return row;
}

void PreviewPanel::setUsesFaces(bool uses) {
    gtk_widget_set_sensitive(m_facesSwitch, uses);
    gtk_widget_set_sensitive(m_facesButton, uses);
    m_view->showFaces(uses && gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(m_facesSwitch)));
}

void PreviewPanel::showZoom() {
    char text[16];
    std::snprintf(text, sizeof text, "%.0f %%", std::round(100 * m_view->zoom()));
    gtk_label_set_text(GTK_LABEL(m_zoomLabel), text);
}

}  // namespace zelgimp
