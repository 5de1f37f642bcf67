#include "gimp/dialog/presetBar.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "gimp/dialog/signals.h"
#include "gimp/run/refusal.h"

namespace zelgimp {

namespace {

GtkEntry* entryOf(GtkWidget* combo) {
    return GTK_ENTRY(gtk_bin_get_child(GTK_BIN(combo)));
}

}  // namespace

PresetBar::PresetBar(Host host)
    : m_host(std::move(host)),
      m_box(gtk_hbox_new(FALSE, 0)),
      m_combo(gtk_combo_box_text_new_with_entry()),
      m_save(gtk_button_new_with_label("Save")),
      m_delete(gtk_button_new_with_label("Delete")) {
    gtk_widget_set_tooltip_text(GTK_WIDGET(entryOf(m_combo)),
                                "Choose a preset, or type the name of a new one");
    gtk_entry_set_width_chars(entryOf(m_combo), 12);
    gtk_box_set_spacing(GTK_BOX(m_box), gapOf(m_box));
    gtk_box_pack_start(GTK_BOX(m_box), gtk_label_new("Preset:"), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(m_box), m_combo, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(m_box), m_save, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(m_box), m_delete, FALSE, FALSE, 0);
    onSignal(m_combo, "changed", [this] { chosen(); });
    onSignal(m_save, "clicked", [this] { save(); });
    onSignal(m_delete, "clicked", [this] { remove(); });
}

void PresetBar::showFor(const std::string& effect) {
    m_effect = effect;
    refill("");
}

std::string PresetBar::name() const {
    gchar* const text = g_strstrip(g_strdup(gtk_entry_get_text(entryOf(m_combo))));
    std::string own = text;
    g_free(text);
    return own;
}

/// Typing a name changes the list's entry as well, but chooses nothing.
void PresetBar::chosen() {
    showButtons();
    if (gtk_combo_box_get_active(GTK_COMBO_BOX(m_combo)) >= 0)
        m_host.take(SavedValues(m_effect).preset(name()));
}

void PresetBar::save() {
    try {
        SavedValues(m_effect).setPreset(name(), m_host.current());
    } catch (const Refusal& refusal) {
        m_host.fail(refusal.what());
    }
    refill(name());
}

void PresetBar::remove() {
    try {
        SavedValues(m_effect).removePreset(name());
    } catch (const Refusal& refusal) {
        m_host.fail(refusal.what());
    }
    refill("");
}

void PresetBar::refill(const std::string& shown) {
    gtk_combo_box_set_active(GTK_COMBO_BOX(m_combo), -1);
    for (; m_count > 0; --m_count) gtk_combo_box_text_remove(GTK_COMBO_BOX_TEXT(m_combo), 0);
    for (const std::string& preset : SavedValues(m_effect).presets()) {
        gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(m_combo), preset.c_str());
        ++m_count;
    }
    gtk_entry_set_text(entryOf(m_combo), shown.c_str());
    showButtons();
}

void PresetBar::showButtons() {
    const std::vector<std::string> names = SavedValues(m_effect).presets();
    gtk_widget_set_sensitive(m_save, !name().empty());
    gtk_widget_set_sensitive(m_delete, std::find(names.begin(), names.end(), name()) != names.end());
}

}  // namespace zelgimp
