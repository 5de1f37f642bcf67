#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "libzel/effect.h"

namespace zel {

/// Parameters as a host sees them. The texts of `parameters` must outlive the object.
class ParameterInfos {
public:
    explicit ParameterInfos(const std::vector<Parameter>& parameters);
    ParameterInfos(const ParameterInfos&) = delete;
    ParameterInfos& operator=(const ParameterInfos&) = delete;

    const zel_parameter* const* data() const { return m_pointers.data(); }
    std::size_t size() const { return m_pointers.size(); }

private:
    std::deque<std::string> m_titles;
    std::deque<std::vector<const char*>> m_choices;
    std::deque<zel_parameter> m_infos;
    std::vector<const zel_parameter*> m_pointers;
};

/// A host's values by name, each as text; the last of a name counts. Throws ZEL_BAD_ARGUMENT, ZEL_BAD_VALUE.
std::map<std::string, std::string> textsOf(const zel_value* values, std::size_t count);

}  // namespace zel
