#include "cli/commands/commandLine.h"

#include <algorithm>
#include <iostream>

#include "cli/commands/applyCommand.h"
#include "cli/commands/commandTexts.h"
#include "cli/commands/effectsCommand.h"
#include "cli/commands/manPage.h"
#include "cli/commands/wrapText.h"
#include "cli/library.h"
#include "cli/run/messages.h"
#include "frame/nearestWord.h"

namespace zelcli {

namespace {

constexpr int kHelpColumn = 30;
constexpr unsigned kMostJobs = 64;

std::string effectNames() {
    std::string names;
    for (const zel_effect* effect : allEffects())
        names.append(names.empty() ? "" : ", ").append(effect->name);
    return names;
}

std::vector<std::string> commandNames() {
    std::vector<std::string> names;
    for (const auto& text : commandTexts()) names.emplace_back(text.name);
    return names;
}

std::string hintFor(const std::string& word, const std::vector<std::string>& candidates) {
    const std::string nearest = zellab::nearestWord(word, candidates);
    return nearest.empty() ? std::string() : "; did you mean '" + nearest + "'?";
}

/// The long options of a command, for the hint on a mistyped one.
std::vector<std::string> optionNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options())
        for (const auto& name : option->get_lnames()) names.push_back("--" + name);
    return names;
}

/// "zel aply": told by hand, for the parser would only call it unexpected.
void checkCommandWord(const std::vector<std::string>& words) {
    const auto names = commandNames();
    if (words.empty() || words[0].empty() || words[0][0] == '-') return;
    if (std::find(names.begin(), names.end(), words[0]) == names.end())
        throw UsageError("there is no command '" + words[0] + "'" + hintFor(words[0], names));
}

bool asksForHelp(const std::vector<std::string>& words) {
    return std::any_of(words.begin(), words.end(),
                       [](const auto& word) { return word == "--help" || word == "-h"; });
}

/// What the parser found wrong, in one line.
std::string describeProblem(const CommandLine& line, const CLI::ParseError& problem) {
    const auto commands = line.app.get_subcommands();
    const CLI::App& at = commands.empty() ? line.app : *commands.front();
    std::string text = problem.what();
    const auto unknown = at.remaining();
    if (!unknown.empty() && unknown.front().rfind("--", 0) == 0)
        text = "there is no option " + unknown.front() + hintFor(unknown.front(), optionNames(at));
    const bool hinted = text.find("did you mean") != std::string::npos;
    if (!hinted) text += (commands.empty() ? "; see zel" : "; see zel " + at.get_name()) + " --help";
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

int dispatch(const CommandLine& line) {
    if (line.manPage) {
        std::cout << manPage(line.app);
        return kDone;
    }
    const auto chosen = line.app.get_subcommands();
    const std::string name = chosen.empty() ? "" : chosen.front()->get_name();
    if (name == "effects") {
        std::cout << (line.effectsAsJson ? effectsJson() : effectsTable());
        return kDone;
    }
    if (name == "apply") return runApply(line.apply);
    if (name == "faces") return runFaces(line.faces);
    if (name == "depth") return runDepth(line.depth);
    if (name == "portrait") return runPortrait(line.portrait);
    if (name == "studio") return runStudio(line.studio);
    std::cerr << line.app.help();
    return kWrongUsage;
}

/// Results that could not be delivered (a full disk behind standard output) are a failure.
int flushResults(int status) {
    std::cout.flush();
    if (std::cout.good()) return status;
    Messages(false).error("", "standard output cannot be written");
    return kWorkFailed;
}

}  // namespace

CommandLine::CommandLine() : app(std::string("zel: ") + kProgramSummary, "zel") {
    app.set_version_flag("--version", "zel " ZEL_VERSION, "Print the version and leave");
    app.add_flag("--man", manPage)->group("");  // for the build: the manual page
    app.get_formatter()->column_width(kHelpColumn);
    app.footer(wrapText(kProgramDetails) + "\n\nSee zel COMMAND --help for each command.");
    app.require_subcommand(0, 1);
    addEffects();
    addApply();
    addFaces();
    addDepth();
    addPortrait();
    addStudio();
}

CLI::App& CommandLine::addCommand(const std::string& name) {
    const CommandText& text = commandText(name);
    CLI::App& command = *app.add_subcommand(name, text.summary);
    command.get_formatter()->column_width(kHelpColumn);
    command.footer(helpFooter(text));
    return command;
}

void CommandLine::addEffects() {
    addCommand("effects").add_flag("--json", effectsAsJson, "Print JSON for scripts");
}

void CommandLine::addApply() {
    CLI::App& command = addCommand("apply");
    command.footer(helpFooter(commandText("apply")) + "\n\n" + wrapText("Effects: " + effectNames()));
    // Every option takes one value a time, so that "--set a=1 in.png" leaves the picture alone.
    const auto add = [&](const char* names, auto& target, const char* help, const char* value) {
        return command.add_option(names, target, help)->option_text(value);
    };
    add("EFFECT", apply.effect, "The effect, as in zel effects", " ")->required();
    add("IN", apply.inputs, "Pictures to read", "...")->required();
    add("-o,--output", apply.output, "Picture to write, or a folder for several inputs", "OUT")->required();
    add("--set", apply.assignments, "Set a parameter of the effect (repeatable)", "NAME=VALUE")
        ->allow_extra_args(false);
    add("--faces", apply.faces,
        "Face data, or a folder with NAME.json for each input; faces are found where it is not given",
        "FACES.json");
    add("--mask", apply.mask, "Mask for the effects that take one", "MASK.png");
    add("--second", apply.second, "Second picture for the effects that take one", "IMAGE");
    add("--cube", apply.cube, "Colour look for the effects that take one", "FILE.cube");
    add("--depth", apply.depth, "Depth map, nearer is brighter, for the effects that take one", "MAP.png");
    add("--depth-out", apply.depthOut,
        "Write the depth map that the effect used, where it does (a folder for several inputs)", "MAP.png");
    add("--mask-out", apply.maskOut,
        "Write the mask that the effect gives back, where it does (a folder for several inputs)", "MASK.png");
    add("--compare", apply.compare, "Write before and after side by side (a folder for several inputs)",
        "SHEET.png");
    add("--jobs", apply.jobs, "Inputs to work on at once", "N")->check(CLI::Range(1u, kMostJobs));
    add("--assets", apply.assets, "Folder with the library's assets", "DIR");
    command.add_flag("--scrambled", apply.scrambled, "The inputs are scrambled picture files");
    command.add_flag("--quiet", apply.quiet, "Only errors on standard error");
    command.add_flag("--verbose", apply.verbose, "Show the library's log");
}

void CommandLine::addFaces() {
    CLI::App& command = addCommand("faces");
    const auto add = [&](const char* names, auto& target, const char* help, const char* value) {
        return command.add_option(names, target, help)->option_text(value);
    };
    add("IN", faces.inputs, "Pictures to search", "...")->required();
    add("-o,--output", faces.output, "Face data to write, or a folder for several inputs", "FACES.json")
        ->required();
    add("--overlay", faces.overlay, "Write the picture with every point drawn (a folder for several inputs)",
        "PNG");
    add("--jobs", faces.jobs, "Inputs to work on at once", "N")->check(CLI::Range(1u, kMostJobs));
    command.add_flag("--quiet", faces.quiet, "Only errors on standard error");
}

void CommandLine::addDepth() {
    CLI::App& command = addCommand("depth");
    const auto add = [&](const char* names, auto& target, const char* help, const char* value) {
        return command.add_option(names, target, help)->option_text(value);
    };
    add("IN", depth.inputs, "Pictures to read", "...")->required();
    add("-o,--output", depth.output, "Depth map to write, or a folder for several inputs", "DEPTH.png")
        ->required();
    add("--mask", depth.mask, "Person mask: white where the person is", "MASK.png");
    add("--set", depth.assignments, "The depth network: a file, or a folder with portrait_depth.onnx",
        "model=FILE")
        ->allow_extra_args(false);
    add("--compare", depth.compare, "Write picture, map and the map in colours side by side", "SHEET.png");
    add("--assets", depth.assets, "Folder with the library's assets", "DIR");
    command.add_flag("--raw", depth.raw, "The network's map, unrefined");
    command.add_flag("--quiet", depth.quiet, "Only errors on standard error");
    command.add_flag("--verbose", depth.verbose, "Show the library's log");
}

void CommandLine::addPortrait() {
    CLI::App& command = addCommand("portrait");
    command.footer(helpFooter(commandText("portrait")) +
                   "\n\nParameters for --set (the seed chooses the rest):\n" + portraitParameterLines());
    const auto add = [&](const char* names, auto& target, const char* help, const char* value) {
        return command.add_option(names, target, help)->option_text(value);
    };
    add("-o,--output", portrait.output, "Picture to write", "OUT.png")->required();
    add("--faces", portrait.faces, "Write the face data", "FACES.json");
    add("--size", portrait.size, "Size in pixels, 900x1200 where not given", "WxH");
    add("--seed", portrait.seed, "Chooses person and scene, 1 where not given", "N");
    add("--set", portrait.assignments, "Set a parameter (repeatable)", "NAME=VALUE")->allow_extra_args(false);
    add("--truth", portrait.truth, "Write the clean picture, masks, depth (16 bits) and spots", "DIR");
    command.add_flag("--quiet", portrait.quiet, "Only errors on standard error");
}

void CommandLine::addStudio() {
    CLI::App& command = addCommand("studio");
    command.add_option("FOLDER", studio.folder, "Folder with pictures; this one where it is not given")
        ->option_text(" ");
    command.add_option("--assets", studio.assets, "Folder with the library's assets")->option_text("DIR");
    command.add_flag("--no-browser", studio.noBrowser, "Only print the address");
    command.add_flag("--verbose", studio.verbose, "Show the library's log");
}

int runCommand(const std::vector<std::string>& words) {
    CommandLine line;
    try {
        checkCommandWord(words);
        if (words.size() >= 2 && words[0] == "apply" && words[1][0] != '-' && asksForHelp(words)) {
            std::cout << effectHelp(findEffect(words[1]));
            return flushResults(kDone);
        }
        std::vector<std::string> reversed(words.rbegin(), words.rend());  // as the parser wants them
        line.app.parse(reversed);
        return flushResults(dispatch(line));
    } catch (const CLI::ParseError& problem) {
        if (problem.get_exit_code() == 0) {
            line.app.exit(problem);  // help or version
            return flushResults(kDone);
        }
        Messages(false).error("", describeProblem(line, problem));
        return kWrongUsage;
    } catch (const UsageError& problem) {
        Messages(false).error("", problem.what());
        return kWrongUsage;
    } catch (const std::exception& problem) {
        Messages(false).error("", problem.what());
        return kWorkFailed;
    }
}

}  // namespace zelcli
