#pragma once

#include <gtk/gtk.h>

#include <string>

namespace zelgimp {

/// What the user has to know, in sentences: why an effect cannot run, or what it will not do.
class MessagePanel {
public:
    /// @param width  of its lines, in pixels
    explicit MessagePanel(int width);

    GtkWidget* widget() const { return m_box; }

    /// Why there is no result; empty: there is one.
    void setProblem(const std::string& sentence);
    /// Of the values that are set now.
    void setCaution(const std::string& sentence);
    /// Of the faces.
    void setFacesNote(const std::string& sentence);
    /// Of the layer, once and for all.
    void setLayerNote(const std::string& sentence);

private:
    void show();

    GtkWidget *m_box, *m_icon, *m_label;
    std::string m_problem, m_caution, m_facesNote, m_layerNote;
};

/// A label of several lines, as wide as told.
GtkWidget* wrappedLabel(const char* text, int width);

}  // namespace zelgimp
