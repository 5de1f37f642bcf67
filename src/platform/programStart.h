#pragma once

#include <string>
#include <vector>

namespace zellab::platform {

/// For programs, first of all: standard streams that the parent left closed lead nowhere instead of to the next
/// file that is opened, bytes pass through them as they are, a terminal takes UTF-8 and control sequences, and the
/// drivers of OpenGL do not talk on standard error where a user has not asked for it.
void prepareProgram();

/// The arguments behind the program's name, in UTF-8 where the system has an encoding for them.
std::vector<std::string> programArguments(int argc, char** argv);

}  // namespace zellab::platform
