#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace zeltest {

/// Sets an environment variable while the object lives, or takes it away where the value is null. Tests of one
/// process run one after another.
class Environment {
public:
    Environment(const char* name, const char* value) : m_name(name) {
        if (const char* before = std::getenv(name)) m_before = before;
        put(value);
    }
    ~Environment() { put(m_before ? m_before->c_str() : nullptr); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    void put(const char* value) const { value ? setenv(m_name, value, 1) : unsetenv(m_name); }

    const char* m_name;
    std::optional<std::string> m_before;
};

}  // namespace zeltest
