#include "gimp/dialog/controls.h"

#include <libgimp/gimp.h>
#include <libgimp/gimpui.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <utility>

#include "gimp/dialog/signals.h"
#include "gimp/dialog/sourceCombo.h"
#include "gimp/run/valueText.h"

namespace zelgimp {

namespace {

constexpr guint kColumns = 3;
/// A range of more steps than this has its slider by powers, or none where it reaches below 0.
constexpr double kMostSteps = 1000;
constexpr int kMostDigits = 4;
/// Where a number has no limits.
constexpr double kAnyNumber = 1e6;

std::string labelOf(const zel_parameter& parameter) {
    const std::string unit = parameter.unit;
    return std::string(parameter.title) + (unit.empty() ? "" : " (" + unit + ")") + ":";
}

/// Digits behind the point that its steps and its default need.
int digitsOf(const zel_parameter& parameter) {
    if (parameter.kind == ZEL_WHOLE_NUMBER) return 0;
    const std::string usual = parameter.default_value ? parameter.default_value : "";
    const std::size_t point = usual.find('.');
    const int own = point == std::string::npos ? 0 : static_cast<int>(usual.size() - point - 1);
    const int ofStep = parameter.step > 0 ? static_cast<int>(std::ceil(-std::log10(parameter.step))) : 0;
    return std::clamp(std::max(own, ofStep), 0, kMostDigits);
}

bool endsWith(const std::string& text, char letter) {
    return !text.empty() && text.back() == letter;
}

bool isFraction(const zel_parameter& parameter) {
    return parameter.kind == ZEL_NUMBER && parameter.minimum == 0 && parameter.maximum == 1;
}

/// "startX" and "startY": a place in the picture.
bool arePair(const zel_parameter& x, const zel_parameter& y) {
    const std::string a = x.name, b = y.name;
    return isFraction(x) && isFraction(y) && endsWith(a, 'X') && endsWith(b, 'Y') &&
           a.compare(0, a.size() - 1, b, 0, b.size() - 1) == 0;
}

void setTooltip(GtkWidget* widget, const char* help) {
    if (*help) gtk_widget_set_tooltip_text(widget, help);
}

}  // namespace

Controls::Controls(Request& request, gint32 target, Listener listener)
    : m_request(request), m_target(target), m_listener(std::move(listener)), m_box(gtk_vbox_new(FALSE, 0)) {
    gtk_box_set_spacing(GTK_BOX(m_box), 2 * gapOf(m_box));
    g_object_ref_sink(m_box);
    Table table = newTable();
    addSources(table);
    addParameters(table, false);
    gtk_box_pack_start(GTK_BOX(m_box), table.widget, FALSE, FALSE, 0);

    Table rare = newTable();
    addParameters(rare, true);
    if (rare.rows > 0) {
        GtkWidget* const expander = gtk_expander_new("Advanced");
        gtk_container_add(GTK_CONTAINER(expander), rare.widget);
        gtk_box_pack_start(GTK_BOX(m_box), expander, FALSE, FALSE, 0);
    } else {
        g_object_ref_sink(rare.widget);
        g_object_unref(rare.widget);
    }
    gtk_widget_show_all(m_box);
}

Controls::~Controls() {
    gtk_widget_destroy(m_box);
    g_object_unref(m_box);
}

Controls::Table Controls::newTable() {
    GtkWidget* const table = gtk_table_new(1, kColumns, FALSE);
    gtk_table_set_row_spacings(GTK_TABLE(table), static_cast<guint>(gapOf(table)));
    gtk_table_set_col_spacings(GTK_TABLE(table), static_cast<guint>(gapOf(table)));
    return {table};
}

void Controls::set(const zel_parameter& parameter, const std::string& text) {
    std::string& own = m_request.values[parameter.name];
    if (own == text) return;
    own = text;
    m_listener.changed();
}

const std::string& Controls::value(const zel_parameter& parameter) const {
    return m_request.values[parameter.name];
}

void Controls::addRow(Table& table, const zel_parameter& parameter, GtkWidget* control) {
    gimp_table_attach_aligned(GTK_TABLE(table.widget), 0, static_cast<gint>(table.rows++),
                              labelOf(parameter).c_str(), 0, 0.5, control, 2, FALSE);
    setTooltip(control, parameter.help);
}

void Controls::addSource(Table& table, const char* title, const char* help, GtkWidget* combo) {
    gimp_table_attach_aligned(GTK_TABLE(table.widget), 0, static_cast<gint>(table.rows++), title, 0, 0.5,
                              combo, 2, FALSE);
    setTooltip(combo, help);
}

void Controls::addSources(Table& table) {
    const zel_effect& effect = *m_request.effect;
    const auto combo = [&](SourceChoice choice, zel_need need, Source& source) {
        GtkWidget* const widget =
            sourceCombo(choice, need, m_target, source, [this, &source](const Source& told) {
                if (source == told) return;
                source = told;
                m_listener.changed();
            });
        return widget;
    };
    if (effect.mask != ZEL_NO)
        addSource(table, "Mask:", "White where the effect acts: the selection, a channel or a layer",
                  combo(SourceChoice::mask, effect.mask, m_request.mask));
    if (effect.second != ZEL_NO)
        addSource(table, "Second layer:", "The layer that is mixed in",
                  combo(SourceChoice::second, effect.second, m_request.second));
    if (effect.depth != ZEL_NO)
        addSource(table, "Depth:", "A layer that is lighter where things are nearer, or an estimate",
                  combo(SourceChoice::depth, effect.depth, m_request.depth));
}

void Controls::addParameters(Table& table, bool advanced) {
    const zel_effect& effect = *m_request.effect;
    for (std::size_t i = 0; i < effect.parameter_count; ++i) {
        const zel_parameter& parameter = *effect.parameters[i];
        if ((parameter.advanced != 0) != advanced) continue;
        addParameter(table, parameter);
        if (i > 0 && arePair(*effect.parameters[i - 1], parameter))
            addPairPicker(table, *effect.parameters[i - 1], parameter);
    }
}

void Controls::addParameter(Table& table, const zel_parameter& parameter) {
    switch (parameter.kind) {
        case ZEL_NUMBER:
        case ZEL_WHOLE_NUMBER:
            addNumber(table, parameter);
            break;
        case ZEL_CHOICE:
            addRow(table, parameter, choiceCombo(parameter));
            break;
        case ZEL_SWITCH: {
            GtkWidget* const button = switchButton(parameter);
            gtk_table_attach(GTK_TABLE(table.widget), button, 0, kColumns, table.rows, table.rows + 1,
                             GTK_FILL, GTK_FILL, 0, 0);
            ++table.rows;
            break;
        }
        case ZEL_POINT:
            addPoint(table, parameter);
            break;
        case ZEL_COLOUR:
            addRow(table, parameter, colourButton(parameter));
            break;
        case ZEL_FILE:
            addRow(table, parameter, fileButton(parameter));
            break;
        case ZEL_TEXT:
            addRow(table, parameter, textEntry(parameter));
            break;
    }
}

void Controls::addNumber(Table& table, const zel_parameter& parameter) {
    const bool isLimited = parameter.maximum > parameter.minimum;
    const double least = isLimited ? parameter.minimum : -kAnyNumber;
    const double most = isLimited ? parameter.maximum : kAnyNumber;
    // The arrows of a wide range go by ones: a hundredth of it is a leap.
    const double step = parameter.step > 0 ? std::min(parameter.step, 1.0) : 1;
    const double now = numberOfText(value(parameter));
    const bool isWide = (most - least) / step > kMostSteps;
    GtkObject* adjustment = nullptr;
    if (isWide && least < 0) {
        GtkWidget* const spin = gimp_spin_button_new(&adjustment, now, least, most, step, 10 * step, 0, 1,
                                                     static_cast<guint>(digitsOf(parameter)));
        // Attached by itself, so that it keeps its own width.
        gimp_table_attach_aligned(GTK_TABLE(table.widget), 0, static_cast<gint>(table.rows++),
                                  labelOf(parameter).c_str(), 0, 0.5, spin, 2, TRUE);
        setTooltip(spin, parameter.help);
    } else {
        adjustment = gimp_scale_entry_new(GTK_TABLE(table.widget), 0, static_cast<gint>(table.rows++),
                                          labelOf(parameter).c_str(), -1, -1, now, least, most, step,
                                          10 * step, static_cast<guint>(digitsOf(parameter)), TRUE, 0, 0,
                                          *parameter.help ? parameter.help : nullptr, nullptr);
        if (isWide) gimp_scale_entry_set_logarithmic(adjustment, TRUE);
    }
    GtkAdjustment* const own = GTK_ADJUSTMENT(adjustment);
    m_adjustments[parameter.name] = own;
    const int digits = digitsOf(parameter);
    onSignal(own, "value-changed", [this, own, &parameter, digits] {
        // What the number beside the slider shows is what counts.
        const double scale = std::pow(10.0, digits);
        set(parameter, textOfNumber(std::round(gtk_adjustment_get_value(own) * scale) / scale));
    });
}

void Controls::addPlacePicker(Table& table, std::function<void(double x, double y)> take) {
    GtkWidget* const button = gtk_toggle_button_new_with_label("Choose in the preview");
    gtk_widget_set_tooltip_text(button, "Then click on the place in the preview");
    onSignal(button, "toggled", [this, button, take = std::move(take)] {
        if (!gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(button))) {
            if (m_picker != button) return;  // another one was pressed
            m_picker = nullptr;
            m_listener.wantsPlace(false);
            return;
        }
        GtkWidget* const earlier = std::exchange(m_picker, button);
        if (earlier) gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(earlier), FALSE);
        m_takePlace = take;
        m_listener.wantsPlace(true);
    });
    gtk_table_attach(GTK_TABLE(table.widget), button, 1, kColumns, table.rows, table.rows + 1, GTK_FILL,
                     GTK_FILL, 0, 0);
    ++table.rows;
}

void Controls::takePlace(double x, double y) {
    if (!m_picker) return;
    m_takePlace(x, y);
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(m_picker), FALSE);
}

void Controls::addPairPicker(Table& table, const zel_parameter& x, const zel_parameter& y) {
    GtkAdjustment *const across = m_adjustments[x.name], *const down = m_adjustments[y.name];
    addPlacePicker(table, [across, down](double newX, double newY) {
        gtk_adjustment_set_value(across, newX);
        gtk_adjustment_set_value(down, newY);
    });
}

/// A word, or a place that is chosen in the preview; both in one entry, as scripts write them.
void Controls::addPoint(Table& table, const zel_parameter& parameter) {
    GtkWidget* const combo = gtk_combo_box_text_new_with_entry();
    GtkWidget* const entry = gtk_bin_get_child(GTK_BIN(combo));
    for (const char* const* choice = parameter.choices; choice && *choice; ++choice)
        gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(combo), *choice);
    gtk_entry_set_text(GTK_ENTRY(entry), value(parameter).c_str());
    onSignal(entry, "changed",
             [this, entry, &parameter] { set(parameter, gtk_entry_get_text(GTK_ENTRY(entry))); });
    addRow(table, parameter, combo);
    addPlacePicker(table, [entry](double x, double y) {
        const auto shortened = [](double part) { return textOfNumber(std::round(part * 1000) / 1000); };
        gtk_entry_set_text(GTK_ENTRY(entry), (shortened(x) + "," + shortened(y)).c_str());
    });
}

GtkWidget* Controls::choiceCombo(const zel_parameter& parameter) {
    GtkWidget* const combo = gtk_combo_box_text_new();
    int index = 0;
    for (const char* const* choice = parameter.choices; choice && *choice; ++choice, ++index) {
        gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(combo), *choice);
        if (value(parameter) == *choice) gtk_combo_box_set_active(GTK_COMBO_BOX(combo), index);
    }
    onSignal(combo, "changed", [this, combo, &parameter] {
        const int chosen = gtk_combo_box_get_active(GTK_COMBO_BOX(combo));
        if (chosen >= 0) set(parameter, parameter.choices[chosen]);
    });
    return combo;
}

GtkWidget* Controls::switchButton(const zel_parameter& parameter) {
    GtkWidget* const button = gtk_check_button_new_with_label(parameter.title);
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(button), truthOfText(value(parameter)));
    setTooltip(button, parameter.help);
    onSignal(button, "toggled", [this, button, &parameter] {
        set(parameter, textOfTruth(gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(button)) != 0));
    });
    return button;
}

GtkWidget* Controls::fileButton(const zel_parameter& parameter) {
    GtkWidget* const box = gtk_hbox_new(FALSE, gapOf(m_box));
    GtkWidget* const chooser = gtk_file_chooser_button_new(parameter.title, GTK_FILE_CHOOSER_ACTION_OPEN);
    GtkWidget* const none = gtk_button_new_with_label("None");
    gtk_box_pack_start(GTK_BOX(box), chooser, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), none, FALSE, FALSE, 0);
    if (!value(parameter).empty())
        gtk_file_chooser_set_filename(GTK_FILE_CHOOSER(chooser), value(parameter).c_str());
    gtk_widget_set_sensitive(none, !value(parameter).empty());
    onSignal(chooser, "file-set", [this, chooser, none, &parameter] {
        gchar* const path = gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(chooser));
        gtk_widget_set_sensitive(none, path != nullptr);
        set(parameter, path ? path : "");
        g_free(path);
    });
    onSignal(none, "clicked", [this, chooser, none, &parameter] {
        gtk_file_chooser_unselect_all(GTK_FILE_CHOOSER(chooser));
        gtk_widget_set_sensitive(none, FALSE);
        set(parameter, "");
    });
    return box;
}

GtkWidget* Controls::textEntry(const zel_parameter& parameter) {
    GtkWidget* const entry = gtk_entry_new();
    gtk_entry_set_text(GTK_ENTRY(entry), value(parameter).c_str());
    onSignal(entry, "changed",
             [this, entry, &parameter] { set(parameter, gtk_entry_get_text(GTK_ENTRY(entry))); });
    return entry;
}

GtkWidget* Controls::colourButton(const zel_parameter& parameter) {
    GimpRGB colour{};
    gimp_rgb_parse_hex(&colour, value(parameter).c_str(), -1);
    gimp_rgb_set_alpha(&colour, 1);
    const auto side = static_cast<gint>(lineHeight(m_box));
    GtkWidget* const button =
        gimp_color_button_new(parameter.title, 3 * side, side, &colour, GIMP_COLOR_AREA_FLAT);
    onSignal(button, "color-changed", [this, button, &parameter] {
        GimpRGB chosen{};
        guchar r = 0, g = 0, b = 0;
        gimp_color_button_get_color(GIMP_COLOR_BUTTON(button), &chosen);
        gimp_rgb_get_uchar(&chosen, &r, &g, &b);
        char text[8];
        std::snprintf(text, sizeof text, "#%02x%02x%02x", r, g, b);
        set(parameter, text);
    });
    return button;
}

}  // namespace zelgimp
