#pragma once

#include <string>
#include <vector>

#include "gimp/run/effectCall.h"

namespace zelgimp {

/// What a user chose for an effect, kept from session to session in the editor's own folder: the last values, and
/// presets by name. What cannot be read is as if it were not there; what cannot be written throws Refusal.
class SavedValues {
public:
    /// @param effect  its name
    explicit SavedValues(const std::string& effect);

    /// Empty where there are none.
    ValueTexts last() const;
    void setLast(const ValueTexts& values);

    std::vector<std::string> presets() const;  // by the alphabet
    ValueTexts preset(const std::string& name) const;
    void setPreset(const std::string& name, const ValueTexts& values);
    void removePreset(const std::string& name);

private:
    ValueTexts group(const std::string& name) const;
    void setGroup(const std::string& name, const ValueTexts& values);

    std::string m_folder, m_file;
};

}  // namespace zelgimp
