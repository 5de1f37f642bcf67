#pragma once

#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "cli/failure.h"
#include "cli/files/image.h"
#include "cli/run/messages.h"
#include "zel/zel.hpp"

/// The library as the command uses it.

namespace zelcli {

/// The context of this run: before openLibrary one with nothing but defaults.
zel_context* library();

/// Passes what the library has to say to the user while it lives: an error becomes one "zel: INPUT: library: ..."
/// line, remarks appear in verbose mode only. Makes the library's context; one object at a time.
class LibraryVoice {
public:
    /// @param assets   folder of --assets; empty: found. Throws FileFailure where it is none.
    /// @param threads  of the library for each call; 0: one for each processor
    LibraryVoice(Messages& messages, bool verbose, const std::string& assets, int threads = 0);
    ~LibraryVoice();
    LibraryVoice(const LibraryVoice&) = delete;
    LibraryVoice& operator=(const LibraryVoice&) = delete;

    /// Names the input at work, for the lines that come while it is the only one.
    void enter(const std::string& input);
    void leave(const std::string& input);

private:
    static void take(void* user, zel_log_level level, const char* message, const char* source);
    std::string inputAtWork();

    Messages& m_messages;
    const bool m_verbose;
    std::mutex m_mutex;
    std::multiset<std::string> m_inputs;
    libzel::Context m_context;
};

/// Throws what a failed call says: what names its file itself as a FileFailure without one, all else as a Failure.
void require(zel_status status);

/// Throws what a failed call says as a UsageError: the library's word, and where none is near the place to look.
[[noreturn]] void refuseUsage(zel_status status, const std::string& place);

/// A copy of packed RGBA pixels.
Image imageOf(const zel_pixels& pixels);

zel_pixels pixelsOf(Image& image);
zel_pixels pixelsOf(Mask& mask);

/// Every effect, in the order in which `zel effects` lists them.
std::vector<const zel_effect*> allEffects();

/// The effect of this name. Throws a UsageError that suggests the nearest name.
const zel_effect& findEffect(const std::string& name);

/// The parameters that --set takes, in order: all but the colour lookup, which has an option of its own.
std::vector<const zel_parameter*> setParameters(const zel_effect& effect);
/// Whether --cube goes with the effect.
bool takesCube(const zel_effect& effect);

/// "NAME=VALUE" words as values of the effect, checked. The last word for a name counts. Throws UsageError.
libzel::Values parseValues(const zel_effect& effect, const std::vector<std::string>& assignments);

/// One "NAME=VALUE" word. Throws UsageError.
std::pair<std::string, std::string> parseAssignment(const std::string& word);

/// "no", "optional" or "required".
const char* needText(zel_need need);

/// The range and default of a parameter in words: "0..10, default 5".
std::string describeRange(const zel_parameter& parameter);

/// Whether the landmarks of a zel_face_group stand on nothing that is seen, as effects take it.
bool mostlyGuessed(const zel_face& face, int group);

/// "2 faces found (confidence 0.91, 0.78 with the left eye guessed)".
std::string describeFaces(const zel_faces* found);

}  // namespace zelcli
