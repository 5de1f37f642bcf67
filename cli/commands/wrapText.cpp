#include "cli/commands/wrapText.h"

#include <sstream>

namespace zelcli {

namespace {

constexpr std::size_t kColumns = 79;

std::string wrapLine(const std::string& line) {
    std::istringstream words(line);
    std::string wrapped;
    std::size_t used = 0;
    for (std::string word; words >> word; used += word.size()) {
        if (used > 0) {
            const bool fits = used + 1 + word.size() <= kColumns;
            wrapped += fits ? ' ' : '\n';
            used = fits ? used + 1 : 0;
        }
        wrapped += word;
    }
    return wrapped;
}

}  // namespace

std::string wrapText(const std::string& text) {
    std::istringstream lines(text);
    std::string wrapped;
    for (std::string line; std::getline(lines, line);) {
        if (!wrapped.empty()) wrapped += '\n';
        wrapped += line.empty() || line[0] == ' ' ? line : wrapLine(line);
    }
    return wrapped;
}

}  // namespace zelcli
