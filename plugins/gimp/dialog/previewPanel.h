#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <memory>

#include "gimp/dialog/previewView.h"

namespace zelgimp {

/// The preview with what stands below it: zoom, the divider, the points of faces.
class PreviewPanel {
public:
    struct Listener {
        std::function<void()> faceMoved;
        std::function<void(double x, double y)> placeChosen;
        std::function<void()> findFacesAgain;
    };

    PreviewPanel(std::shared_ptr<const Rgba> before, Listener listener);
    PreviewPanel(const PreviewPanel&) = delete;
    PreviewPanel& operator=(const PreviewPanel&) = delete;

    GtkWidget* widget() const { return m_box; }
    PreviewView& view() { return *m_view; }

    /// Whether the effect follows faces: their controls make sense.
    void setUsesFaces(bool uses);

private:
    GtkWidget* zoomRow();
    GtkWidget* addButton(GtkWidget* box, const char* label, const char* tooltip,
                         std::function<void()> clicked);
    GtkWidget* addSwitch(GtkWidget* box, const char* label, const char* tooltip, bool on,
                         std::function<void(bool)> toggled);
    void showZoom();

    Listener m_listener;
    GtkWidget *m_box, *m_zoomLabel = nullptr, *m_facesSwitch = nullptr, *m_facesButton = nullptr;
    std::unique_ptr<PreviewView> m_view;
};

}  // namespace zelgimp
