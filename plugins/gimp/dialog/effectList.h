#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

#include "zel/zel.h"

namespace zelgimp {

/// All effects in the order of menus, with a search above.
class EffectList {
public:
    /// @param chosen  told when the user chooses another one
    explicit EffectList(std::function<void(const zel_effect&)> chosen);
    EffectList(const EffectList&) = delete;
    EffectList& operator=(const EffectList&) = delete;

    GtkWidget* widget() const { return m_box; }
    GtkWidget* searchEntry() const { return m_search; }
    void choose(const zel_effect& effect);

private:
    void buildTree();
    void search();
    void selectionChanged();
    bool matches(const zel_effect& effect) const;

    std::function<void(const zel_effect&)> m_chosen;
    GtkWidget *m_box, *m_search, *m_tree;
    GtkListStore* m_store;
    GtkTreeModel* m_filter;
    std::vector<std::string> m_words;  // of the search, folded
};

}  // namespace zelgimp
