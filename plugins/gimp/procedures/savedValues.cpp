#include "gimp/procedures/savedValues.h"

#include <libgimp/gimp.h>

#include <algorithm>
#include <memory>

#include "gimp/run/refusal.h"

namespace zelgimp {

namespace {

constexpr const char *kLast = "last", *kPreset = "preset ";

struct KeyFileFree {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, KeyFileFree>;

std::string taken(gchar* text) {
    std::string own = text ? text : "";
    g_free(text);
    return own;
}

/// The name of a group takes any letter but brackets and control characters.
std::string groupOf(const std::string& preset) {
    return kPreset + taken(g_uri_escape_string(preset.c_str(), " ", TRUE));
}

KeyFile load(const std::string& path) {
    KeyFile file(g_key_file_new());
    g_key_file_load_from_file(file.get(), path.c_str(), G_KEY_FILE_NONE, nullptr);
    return file;
}

void save(GKeyFile* file, const std::string& folder, const std::string& path) {
    GError* error = nullptr;
    g_mkdir_with_parents(folder.c_str(), 0700);
    if (g_key_file_save_to_file(file, path.c_str(), &error)) return;
    const std::string why = error->message;
    g_error_free(error);
    throw Refusal("The values cannot be kept: " + why + ".");
}

}  // namespace

SavedValues::SavedValues(const std::string& effect)
    : m_folder(std::string(gimp_directory()) + "/zel"), m_file(m_folder + "/" + effect + ".ini") {}

ValueTexts SavedValues::last() const {
    return group(kLast);
}

void SavedValues::setLast(const ValueTexts& values) {
    setGroup(kLast, values);
}

std::vector<std::string> SavedValues::presets() const {
    std::vector<std::string> names;
    gchar** const groups = g_key_file_get_groups(load(m_file).get(), nullptr);
    const std::string start = kPreset;
    for (gchar** group = groups; *group; ++group)
        if (std::string(*group).compare(0, start.size(), start) == 0)
            names.push_back(taken(g_uri_unescape_string(*group + start.size(), nullptr)));
    g_strfreev(groups);
    std::sort(names.begin(), names.end());
    return names;
}

ValueTexts SavedValues::preset(const std::string& name) const {
    return group(groupOf(name));
}

void SavedValues::setPreset(const std::string& name, const ValueTexts& values) {
    setGroup(groupOf(name), values);
}

void SavedValues::removePreset(const std::string& name) {
    const KeyFile file = load(m_file);
    g_key_file_remove_group(file.get(), groupOf(name).c_str(), nullptr);
    save(file.get(), m_folder, m_file);
}

ValueTexts SavedValues::group(const std::string& name) const {
    ValueTexts values;
    const KeyFile file = load(m_file);
    gchar** const keys = g_key_file_get_keys(file.get(), name.c_str(), nullptr, nullptr);
    for (gchar** key = keys; key && *key; ++key)
        values[*key] = taken(g_key_file_get_string(file.get(), name.c_str(), *key, nullptr));
    g_strfreev(keys);
    return values;
}

void SavedValues::setGroup(const std::string& name, const ValueTexts& values) {
    const KeyFile file = load(m_file);
    g_key_file_remove_group(file.get(), name.c_str(), nullptr);
    for (const auto& [key, value] : values)
        g_key_file_set_string(file.get(), name.c_str(), key.c_str(), value.c_str());
    save(file.get(), m_folder, m_file);
}

}  // namespace zelgimp
