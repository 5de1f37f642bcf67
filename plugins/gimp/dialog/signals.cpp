#include "gimp/dialog/signals.h"

#include <cmath>
#include <utility>

namespace zelgimp {

namespace {

constexpr double kGapsALine = 2.75;

using Call = std::function<void()>;

void marshal(GClosure* closure, GValue*, guint, const GValue*, gpointer, gpointer) {
    (*static_cast<Call*>(closure->data))();
}

}  // namespace

void onSignal(gpointer object, const char* signal, std::function<void()> call) {
    GClosure* const closure = g_closure_new_simple(sizeof(GClosure), new Call(std::move(call)));
    g_closure_set_marshal(closure, marshal);
    g_closure_add_finalize_notifier(closure, closure->data,
                                    [](gpointer data, GClosure*) { delete static_cast<Call*>(data); });
    g_signal_connect_closure(object, signal, closure, FALSE);
}

double lineHeight(GtkWidget* widget) {
    PangoLayout* const layout = gtk_widget_create_pango_layout(widget, "Xg");
    int height = 0;
    pango_layout_get_pixel_size(layout, nullptr, &height);
    g_object_unref(layout);
    return height;
}

int gapOf(GtkWidget* widget) {
    return static_cast<int>(std::round(lineHeight(widget) / kGapsALine));
}

GtkWidget* leftLabel(const char* text) {
    GtkWidget* const label = gtk_label_new(text);
    gtk_misc_set_alignment(GTK_MISC(label), 0, 0.5F);
    return label;
}

}  // namespace zelgimp
