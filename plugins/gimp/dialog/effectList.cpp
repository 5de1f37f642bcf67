#include "gimp/dialog/effectList.h"

#include <algorithm>
#include <utility>

#include "gimp/dialog/signals.h"

namespace zelgimp {

namespace {

enum Column { kTitle, kSummary, kEffect, kColumns };

/// Letters without their case, for comparing.
std::string folded(const std::string& text) {
    gchar* const fold = g_utf8_casefold(text.c_str(), -1);
    std::string own = fold;
    g_free(fold);
    return own;
}

const zel_effect* effectAt(GtkTreeModel* model, GtkTreeIter* iter) {
    gpointer effect = nullptr;
    gtk_tree_model_get(model, iter, kEffect, &effect, -1);
    return static_cast<const zel_effect*>(effect);
}

}  // namespace

EffectList::EffectList(std::function<void(const zel_effect&)> chosen)
    : m_chosen(std::move(chosen)),
      m_box(gtk_vbox_new(FALSE, 0)),
      m_search(gtk_entry_new()),
      m_tree(nullptr),
      m_store(gtk_list_store_new(kColumns, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_POINTER)),
      m_filter(gtk_tree_model_filter_new(GTK_TREE_MODEL(m_store), nullptr)) {
    gtk_entry_set_icon_from_stock(GTK_ENTRY(m_search), GTK_ENTRY_ICON_PRIMARY, GTK_STOCK_FIND);
    gtk_entry_set_icon_from_stock(GTK_ENTRY(m_search), GTK_ENTRY_ICON_SECONDARY, GTK_STOCK_CLEAR);
    gtk_widget_set_tooltip_text(m_search, "Search the effects by their names and what they do");
    onSignal(m_search, "icon-press", [this] { gtk_entry_set_text(GTK_ENTRY(m_search), ""); });
    onSignal(m_search, "changed", [this] { search(); });
    gtk_box_set_spacing(GTK_BOX(m_box), gapOf(m_box));
    gtk_box_pack_start(GTK_BOX(m_box), m_search, FALSE, FALSE, 0);
    buildTree();
}

void EffectList::buildTree() {
    for (std::size_t i = 0; i < zel_effect_count(); ++i) {
        const zel_effect* const effect = zel_effect_at(i);
        gchar* const summary = g_markup_escape_text(effect->summary, -1);
        gtk_list_store_insert_with_values(m_store, nullptr, -1, kTitle, effect->title, kSummary, summary,
                                          kEffect, effect, -1);
        g_free(summary);
    }
    gtk_tree_model_filter_set_visible_func(
        GTK_TREE_MODEL_FILTER(m_filter),
        [](GtkTreeModel* model, GtkTreeIter* iter, gpointer self) -> gboolean {
            const zel_effect* const effect = effectAt(model, iter);
            return effect && static_cast<EffectList*>(self)->matches(*effect);
        },
        this, nullptr);
    m_tree = gtk_tree_view_new_with_model(m_filter);
    g_object_unref(m_filter);
    g_object_unref(m_store);
    gtk_tree_view_set_headers_visible(GTK_TREE_VIEW(m_tree), FALSE);
    gtk_tree_view_set_enable_search(GTK_TREE_VIEW(m_tree), FALSE);
    gtk_tree_view_set_tooltip_column(GTK_TREE_VIEW(m_tree), kSummary);
    GtkCellRenderer* const cell = gtk_cell_renderer_text_new();
    gtk_tree_view_insert_column_with_attributes(GTK_TREE_VIEW(m_tree), -1, "", cell, "text", kTitle, nullptr);
    onSignal(gtk_tree_view_get_selection(GTK_TREE_VIEW(m_tree)), "changed", [this] { selectionChanged(); });

    GtkWidget* const scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_IN);
    gtk_container_add(GTK_CONTAINER(scrolled), m_tree);
    gtk_box_pack_start(GTK_BOX(m_box), scrolled, TRUE, TRUE, 0);
}

bool EffectList::matches(const zel_effect& effect) const {
    if (m_words.empty()) return true;
    const std::string text = folded(std::string(effect.title) + " " + effect.name + " " + effect.summary);
    return std::all_of(m_words.begin(), m_words.end(),
                       [&](const std::string& word) { return text.find(word) != std::string::npos; });
}

/// Every word must be there. Where one effect alone is left, it is chosen.
void EffectList::search() {
    m_words.clear();
    gchar** const words = g_strsplit_set(gtk_entry_get_text(GTK_ENTRY(m_search)), " \t", -1);
    for (gchar** word = words; *word; ++word)
        if (**word) m_words.push_back(folded(*word));
    g_strfreev(words);
    gtk_tree_model_filter_refilter(GTK_TREE_MODEL_FILTER(m_filter));
    GtkTreeIter only;
    if (gtk_tree_model_iter_n_children(m_filter, nullptr) == 1 &&
        gtk_tree_model_get_iter_first(m_filter, &only))
        gtk_tree_selection_select_iter(gtk_tree_view_get_selection(GTK_TREE_VIEW(m_tree)), &only);
}

void EffectList::selectionChanged() {
    GtkTreeIter iter;
    GtkTreeSelection* const selection = gtk_tree_view_get_selection(GTK_TREE_VIEW(m_tree));
    if (gtk_tree_selection_get_selected(selection, nullptr, &iter)) m_chosen(*effectAt(m_filter, &iter));
}

void EffectList::choose(const zel_effect& effect) {
    GtkTreeIter iter;
    for (gboolean has = gtk_tree_model_get_iter_first(m_filter, &iter); has;
         has = gtk_tree_model_iter_next(m_filter, &iter)) {
        if (effectAt(m_filter, &iter) != &effect) continue;
        GtkTreePath* const path = gtk_tree_model_get_path(m_filter, &iter);
        gtk_tree_view_set_cursor(GTK_TREE_VIEW(m_tree), path, nullptr, FALSE);
        gtk_tree_view_scroll_to_cell(GTK_TREE_VIEW(m_tree), path, nullptr, FALSE, 0, 0);
        gtk_tree_path_free(path);
    }
}

}  // namespace zelgimp
