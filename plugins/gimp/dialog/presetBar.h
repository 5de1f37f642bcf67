#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>

#include "gimp/procedures/savedValues.h"

namespace zelgimp {

/// The presets of one effect: chosen, saved and deleted by name.
class PresetBar {
public:
    struct Host {
        std::function<void(const ValueTexts&)> take;  // a preset was chosen
        std::function<ValueTexts()> current;          // what is to be saved
        std::function<void(const std::string&)> fail;
    };

    explicit PresetBar(Host host);
    PresetBar(const PresetBar&) = delete;
    PresetBar& operator=(const PresetBar&) = delete;

    GtkWidget* widget() const { return m_box; }
    void showFor(const std::string& effect);

private:
    std::string name() const;
    void chosen();
    void save();
    void remove();
    void refill(const std::string& shown);
    void showButtons();

    Host m_host;
    GtkWidget *m_box, *m_combo, *m_save, *m_delete;
    std::string m_effect;
    int m_count = 0;  // names in the list
};

}  // namespace zelgimp
