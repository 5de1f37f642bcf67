#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "cli/commands/applyOptions.h"
#include "cli/commands/depthCommand.h"
#include "cli/commands/facesCommand.h"
#include "cli/commands/networksCommand.h"
#include "cli/commands/portraitCommand.h"
#include "cli/studio/studioCommand.h"

namespace zelcli {

/// Words of --subsampling and the like, before they are understood.
struct SaveWords {
    std::string subsampling, noFace = "fail";
    double megapixels = 0;  // 0: the default limit
};

/// The command's grammar with the places where a parse puts what was typed.
class CommandLine {
public:
    CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    CLI::App app;
    ApplyOptions apply;
    StepOptions lastStep;  // the only effect, or the last one of a chain
    SaveWords saveWords;
    FacesOptions faces;
    DepthOptions depth;
    PortraitOptions portrait;
    NetworksOptions networks;
    StudioOptions studio;
    bool effectsAsJson = false;
    bool manPage = false;
    std::vector<std::string> described;  // names behind zel effects and zel help
    std::vector<std::string> recipes;    // of zel recipe
    std::string shell;                   // of zel completion

private:
    CLI::App& addCommand(const std::string& name);
    void addEffects();
    void addApply();
    void addBatchOptions(CLI::App& command);
    void addSaveOptions(CLI::App& command);
    void addFaces();
    void addDepth();
    void addPortrait();
    void addNetworks();
    void addStudio();
};

/// Runs the command with the words behind the program's name; returns the exit status.
int runCommand(const std::vector<std::string>& words);

}  // namespace zelcli
