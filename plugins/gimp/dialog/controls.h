#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <map>
#include <string>

#include "gimp/run/request.h"

namespace zelgimp {

/// The controls of one effect, made from the description of its parameters. They write what the user sets into a
/// request. To show other values, make them anew.
class Controls {
public:
    struct Listener {
        std::function<void()> changed;
        /// The user wants to choose a place in the preview, or no longer does: see takePlace().
        std::function<void(bool)> wantsPlace;
    };

    /// @param request  changed as the user goes; outlives the controls
    /// @param target   the layer that is changed
    Controls(Request& request, gint32 target, Listener listener);
    ~Controls();
    Controls(const Controls&) = delete;
    Controls& operator=(const Controls&) = delete;

    GtkWidget* widget() const { return m_box; }

    /// The place that was chosen in the preview, in fractions of the layer.
    void takePlace(double x, double y);

private:
    /// A table of three columns that grows: label, control, number.
    struct Table {
        GtkWidget* widget;
        guint rows = 0;
    };

    Table newTable();
    void addRow(Table& table, const zel_parameter& parameter, GtkWidget* control);
    void addSource(Table& table, const char* title, const char* help, GtkWidget* combo);
    void addSources(Table& table);
    void addParameters(Table& table, bool advanced);
    void addParameter(Table& table, const zel_parameter& parameter);
    void addNumber(Table& table, const zel_parameter& parameter);
    void addPlacePicker(Table& table, std::function<void(double x, double y)> take);
    void addPairPicker(Table& table, const zel_parameter& x, const zel_parameter& y);
    void addPoint(Table& table, const zel_parameter& parameter);
    GtkWidget* choiceCombo(const zel_parameter& parameter);
    GtkWidget* switchButton(const zel_parameter& parameter);
    GtkWidget* fileButton(const zel_parameter& parameter);
    GtkWidget* textEntry(const zel_parameter& parameter);
    GtkWidget* colourButton(const zel_parameter& parameter);
    void set(const zel_parameter& parameter, const std::string& text);
    const std::string& value(const zel_parameter& parameter) const;

    Request& m_request;
    gint32 m_target;
    Listener m_listener;
    GtkWidget* m_box;
    std::map<std::string, GtkAdjustment*> m_adjustments;  // of numbers, by their parameters
    GtkWidget* m_picker = nullptr;                        // the pressed button; null: none
    std::function<void(double x, double y)> m_takePlace;
};

}  // namespace zelgimp
