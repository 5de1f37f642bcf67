#include "gimp/dialog/messagePanel.h"

#include <libgimp/gimp.h>
#include <libgimp/gimpui.h>

#include "gimp/dialog/signals.h"

namespace zelgimp {

GtkWidget* wrappedLabel(const char* text, int width) {
    GtkWidget* const label = gtk_label_new(text);
    gtk_misc_set_alignment(GTK_MISC(label), 0, 0);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    // Without a width of its own a label of this toolkit takes any.
    gtk_widget_set_size_request(label, width, -1);
    return label;
}

MessagePanel::MessagePanel(int width) : m_box(gtk_hbox_new(FALSE, 0)), m_icon(gtk_image_new()) {
    int iconWidth = 0, iconHeight = 0;
    gtk_icon_size_lookup(GTK_ICON_SIZE_MENU, &iconWidth, &iconHeight);
    const int gap = gapOf(m_box);
    gtk_box_set_spacing(GTK_BOX(m_box), gap);
    m_label = wrappedLabel("", width - iconWidth - gap);
    gtk_misc_set_alignment(GTK_MISC(m_icon), 0.5F, 0);
    gtk_box_pack_start(GTK_BOX(m_box), m_icon, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(m_box), m_label, TRUE, TRUE, 0);
    gtk_widget_show(m_icon);
    gtk_widget_show(m_label);
    // It takes room while it says something.
    gtk_widget_set_no_show_all(m_box, TRUE);
}

void MessagePanel::setProblem(const std::string& sentence) {
    m_problem = sentence;
    show();
}

void MessagePanel::setCaution(const std::string& sentence) {
    m_caution = sentence;
    show();
}

void MessagePanel::setFacesNote(const std::string& sentence) {
    m_facesNote = sentence;
    show();
}

void MessagePanel::setLayerNote(const std::string& sentence) {
    m_layerNote = sentence;
    show();
}

void MessagePanel::show() {
    std::string text = m_problem;
    if (text.empty())
        for (const std::string* note : {&m_caution, &m_facesNote, &m_layerNote})
            if (!note->empty()) text += (text.empty() ? "" : "\n") + *note;
    gtk_label_set_text(GTK_LABEL(m_label), text.c_str());
    gtk_image_set_from_icon_name(GTK_IMAGE(m_icon),
                                 m_problem.empty() ? GIMP_ICON_DIALOG_INFORMATION : GIMP_ICON_DIALOG_WARNING,
                                 GTK_ICON_SIZE_MENU);
    gtk_widget_set_visible(m_box, !text.empty());
}

}  // namespace zelgimp
