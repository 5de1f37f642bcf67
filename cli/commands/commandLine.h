#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "cli/commands/applyPlan.h"
#include "cli/commands/depthCommand.h"
#include "cli/commands/facesCommand.h"
#include "cli/commands/portraitCommand.h"
#include "cli/studio/studioCommand.h"

namespace zelcli {

/// The command's grammar with the places where a parse puts what was typed.
class CommandLine {
public:
    CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    CLI::App app;
    ApplyOptions apply;
    FacesOptions faces;
    DepthOptions depth;
    PortraitOptions portrait;
    StudioOptions studio;
    bool effectsAsJson = false;
    bool manPage = false;

private:
    CLI::App& addCommand(const std::string& name);
    void addEffects();
    void addApply();
    void addFaces();
    void addDepth();
    void addPortrait();
    void addStudio();
};

/// Runs the command with the words behind the program's name; returns the exit status.
int runCommand(const std::vector<std::string>& words);

}  // namespace zelcli
