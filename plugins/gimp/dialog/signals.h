#pragma once

#include <gtk/gtk.h>

#include <functional>

namespace zelgimp {

/// Calls the function whenever the object sends the signal, for as long as the object lives. For signals that want no
/// answer.
void onSignal(gpointer object, const char* signal, std::function<void()> call);

/// For signals of the window system: the function is told the event, and answers whether that was meant for it.
template <typename Event>
void onEvent(GtkWidget* widget, const char* signal, gboolean (*handle)(GtkWidget*, Event*, gpointer),
             gpointer self) {
    g_signal_connect_data(widget, signal, reinterpret_cast<GCallback>(handle), self, nullptr,
                          GConnectFlags(0));
}

/// Height of a line of the widget's text in pixels: what is drawn is sized by it, so that it grows with the desktop's
/// fonts on fine screens.
double lineHeight(GtkWidget* widget);

/// The space between things that belong together, likewise; twice as much between others.
int gapOf(GtkWidget* widget);

/// A label whose text begins at the left.
GtkWidget* leftLabel(const char* text);

}  // namespace zelgimp
