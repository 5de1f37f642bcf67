#pragma once

#include <string>
#include <vector>

/// The words of --help and of the manual page, in one place.

namespace zelcli {

struct Example {
    const char* what;     // ends without a full stop
    const char* command;  // a line to type
};

struct CommandText {
    const char* name;
    const char* summary;  // one line
    const char* details;  // paragraphs, separated by empty lines
    std::vector<Example> examples;
};

/// One entry per subcommand, in the order of --help.
const std::vector<CommandText>& commandTexts();
const CommandText& commandText(const std::string& name);

extern const char* const kProgramSummary;
extern const char* const kProgramDetails;
/// Each exit status and what it says.
extern const std::vector<std::pair<int, const char*>> kExitStatuses;

/// The text below the options in --help: details and examples.
std::string helpFooter(const CommandText& text);

}  // namespace zelcli
