#pragma once

#include <filesystem>
#include <string>

namespace zelcli::studio {

/// Opens an address in the user's browser, for as long as the object lives. The address holds a secret and would be
/// seen by everybody on a command line: the browser is given a file that only the user can read, and that leads on.
class Browser {
public:
    explicit Browser(const std::string& address);
    ~Browser();
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;

    /// Whether a browser could be started.
    bool started() const { return m_started; }

private:
    std::filesystem::path m_file;
    bool m_started = false;
};

}  // namespace zelcli::studio
