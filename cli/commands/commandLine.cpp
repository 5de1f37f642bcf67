#include "cli/commands/commandLine.h"

#include <algorithm>
#include <iostream>

#include "cli/commands/applyCommand.h"
#include "cli/commands/commandTexts.h"
#include "cli/commands/completion.h"
#include "cli/commands/effectsCommand.h"
#include "cli/commands/manPage.h"
#include "cli/commands/recipeCommand.h"
#include "cli/commands/wrapText.h"
#include "cli/library.h"
#include "cli/run/messages.h"
#include "frame/nearestWord.h"

namespace zelcli {

namespace {

constexpr int kHelpColumn = 30;
constexpr unsigned kMostJobs = 64;
constexpr double kMostMegapixels = 1073.0;  // 32,767 by 32,767

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
    return std::any_of(words.begin(), std::find(words.begin(), words.end(), "--"),
                       [](const auto& word) { return word == "--help" || word == "-h"; });
}

/// What other programs call what this one calls otherwise.
constexpr std::pair<const char*, const char*> kOtherNames[] = {
    {"--out", "-o"},
    {"--outdir", "-o FOLDER/"},
    {"--output-dir", "-o FOLDER/"},
    {"--input", "just the file's name"},
    {"--overwrite", "--in-place"},
    {"--force", "--in-place"},
    {"--skip-existing", "--no-clobber"},
    {"--threads", "--jobs"},
    {"--parallel", "--jobs"},
    {"--effect", "the effect's name behind apply"},
    {"--preset", "--recipe"},
    {"--style", "--recipe"},
    {"--lut", "--cube"},
    {"--strip-metadata", "--strip"},
    {"--chroma", "--subsampling"},
    {"--silent", "--quiet"},
    {"--type", "--format"},
    {"--width", "a matter for another program: this one keeps the size"},
    {"--resize", "a matter for another program: this one keeps the size"}};

/// A word that belongs to an effect's parameter, or to another program.
std::string hintForForeign(const std::string& option, const std::vector<std::string>& words) {
    const std::string name = option.substr(2, option.find('=') - 2);
    for (const std::string& word : words) {
        const zel_effect* effect = nullptr;
        if (zel_effect_find(word.c_str(), &effect) != ZEL_OK) continue;
        for (const zel_parameter* parameter : setParameters(*effect))
            if (name == parameter->name)
                return std::string("; ")
                    .append(word)
                    .append(" takes it as --set ")
                    .append(name)
                    .append("=VALUE (")
                    .append(describeRange(*parameter))
                    .append(")");
    }
    for (const auto& [foreign, own] : kOtherNames)
        if (option.substr(0, option.find('=')) == foreign) return std::string("; here it is ") + own;
    return {};
}

/// What the parser found wrong, in one line.
std::string describeProblem(const CommandLine& line, const std::vector<std::string>& words,
                            const CLI::ParseError& problem) {
    const auto commands = line.app.get_subcommands();
    const CLI::App& at = commands.empty() ? line.app : *commands.front();
    std::string text = problem.what();
    const auto unknown = at.remaining();
    if (!unknown.empty() && unknown.front().rfind("--", 0) == 0) {
        const std::string foreign = hintForForeign(unknown.front(), words);
        text = "there is no option " + unknown.front() +
               (foreign.empty() ? hintFor(unknown.front(), optionNames(at)) : foreign);
    }
    const bool hinted = text.find("; ") != std::string::npos;
    if (!hinted) text += (commands.empty() ? "; see zel" : "; see zel " + at.get_name()) + " --help";
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

/// One of a few words, as what it stands for.
template <typename Value>
Value wordValue(const char* option, const std::string& word,
                std::initializer_list<std::pair<const char*, Value>> words) {
    std::string list;
    for (const auto& [name, value] : words) {
        if (word == name) return value;
        list.append(list.empty() ? "" : ", ").append(name);
    }
    throw UsageError(std::string(option) + " is one of " + list + ", not '" + word + "'");
}

/// What the grammar holds as words and numbers.
ApplyOptions applyOptions(const CommandLine& line) {
    ApplyOptions options = line.apply;
    // With a recipe the first word is a picture.
    if (!options.recipe.empty() && options.steps.empty() && !line.lastStep.effect.empty())
        options.inputs.insert(options.inputs.begin(), line.lastStep.effect);
    else if (!line.lastStep.effect.empty())
        options.steps.push_back(line.lastStep);
    for (const StepOptions& step : options.steps) findEffect(step.effect);
    if (options.inputs.empty())
        throw UsageError(options.steps.empty() && options.recipe.empty()
                             ? "EFFECT is required; see zel apply --help"
                             : "IN is required: no picture is named");
    const SaveWords& words = line.saveWords;
    if (!words.subsampling.empty())
        options.save.subsampling = wordValue<Subsampling>(
            "--subsampling", words.subsampling, {{"444", Subsampling::none}, {"420", Subsampling::quarter}});
    options.noFace = wordValue<NoFace>(
        "--no-face", words.noFace, {{"fail", NoFace::fail}, {"skip", NoFace::skip}, {"copy", NoFace::copy}});
    if (words.megapixels > 0) options.read.mostPixels = static_cast<std::uint64_t>(words.megapixels * 1e6);
    return options;
}

/// Help on commands and effects; on all of the program without a word.
int printHelp(const CommandLine& line) {
    if (line.described.empty()) std::cout << line.app.help();
    const auto commands = commandNames();
    for (const std::string& word : line.described) {
        const zel_effect* effect = nullptr;
        if (std::find(commands.begin(), commands.end(), word) != commands.end()) {
            std::cout << line.app.get_subcommand(word)->help();
        } else if (zel_effect_find(word.c_str(), &effect) == ZEL_OK) {
            std::cout << effectHelp(*effect);
        } else {
            auto names = commands;
            for (const zel_effect* known : allEffects()) names.emplace_back(known->name);
            throw UsageError("there is no command and no effect '" + word + "'" + hintFor(word, names));
        }
    }
    return kDone;
}

int dispatch(const CommandLine& line) {
    if (line.manPage) {
        std::cout << manPage(line.app);
        return kDone;
    }
    const auto chosen = line.app.get_subcommands();
    const std::string name = chosen.empty() ? "" : chosen.front()->get_name();
    if (name == "effects") {
        if (line.described.empty()) std::cout << (line.effectsAsJson ? effectsJson() : effectsTable());
        for (const auto& effect : line.described) std::cout << effectHelp(findEffect(effect));
        return kDone;
    }
    if (name == "help") return printHelp(line);
    if (name == "recipe") return runRecipe(line.recipes);
    if (name == "completion") {
        std::cout << completion(line.app, line.shell);
        return kDone;
    }
    if (name == "apply") return runApply(applyOptions(line));
    if (name == "faces") return runFaces(line.faces);
    if (name == "depth") return runDepth(line.depth);
    if (name == "portrait") return runPortrait(line.portrait);
    if (name == "networks") {
        std::cout << networksText(line.networks);
        return kDone;
    }
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
    // One grammar everywhere: a word that begins with a slash is a path.
    app.allow_windows_style_options(false);
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
    addCommand("recipe")
        .add_option("FILE", recipes, "Recipes, or folders of them")
        ->option_text("...")
        ->required();
    addCommand("help").add_option("WORD", described, "A command or an effect")->option_text("...");
    addCommand("completion")
        .add_option("SHELL", shell, "bash, zsh or fish")
        ->option_text(" ")
        ->required()
        ->check(CLI::IsMember({"bash", "zsh", "fish"}));
    addNetworks();
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
    CLI::App& command = addCommand("effects");
    command.add_option("NAME", described, "Effects to tell more about")->option_text("...");
    command.add_flag("--json", effectsAsJson, "Print JSON for scripts");
}

namespace {

/// Adds an option that takes one value a time, so that "--set a=1 in.png" leaves the picture alone.
template <typename Target>
CLI::Option* addOption(CLI::App& command, const char* names, Target& target, const char* help,
                       const char* value) {
    return command.add_option(names, target, help)->option_text(value);
}

/// What belongs to one effect of a chain.
void addStepOptions(CLI::App& command, StepOptions& step) {
    const auto add = [&](const char* names, auto& target, const char* help, const char* value) {
        return addOption(command, names, target, help, value);
    };
    add("EFFECT", step.effect, "The effect, as in zel effects; several are joined by +", " ");
    add("--set", step.assignments, "Set a parameter of the effect (repeatable)", "NAME=VALUE")
        ->allow_extra_args(false);
    add("--mask", step.mask, "Mask for the effects that take one", "MASK.png");
    add("--second", step.second, "Second picture for the effects that take one", "IMAGE");
    add("--cube", step.cube, "Colour look for the effects that take one", "FILE.cube");
    add("--depth", step.depth, "Depth map, nearer is brighter, for the effects that take one", "MAP.png");
    add("--depth-out", step.depthOut,
        "Write the depth map that the effect used, where it does (a folder for several inputs)", "MAP.png");
    add("--mask-out", step.maskOut,
        "Write the mask that the effect gives back, where it does (a folder for several inputs)", "MASK.png");
}

}  // namespace

void CommandLine::addApply() {
    CLI::App& command = addCommand("apply");
    command.footer(helpFooter(commandText("apply")) + "\n\n" + wrapText("Effects: " + effectNames()));
    const auto add = [&](const char* names, auto& target, const char* help, const char* value) {
        return addOption(command, names, target, help, value);
    };
    addStepOptions(command, lastStep);
    add("IN", apply.inputs, "Pictures to read, or folders of them; - is standard input", "...");
    add("-o,--output", apply.output, "Picture to write, or a folder for several inputs; - is standard output",
        "OUT");
    add("--recipe", apply.recipe, "Take effects and values from a file, in the place of EFFECT", "FILE.json");
    add("--save-recipe", apply.saveRecipe, "Write effects and values to a file that --recipe takes",
        "FILE.json");
    add("--faces", apply.faces,
        "Face data, or a folder with NAME.json for each input; faces are found where it is not given",
        "FACES.json");
    add("--face", apply.face, "Which faces: all, largest, or a number, where 1 is the largest", "WHICH");
    add("--no-face", saveWords.noFace,
        "A picture without a face, where one is needed, fails, is skipped or copied", "fail|skip|copy");
    add("--compare", apply.compare, "Write before and after side by side (a folder for several inputs)",
        "SHEET.png");
    addBatchOptions(command);
    addSaveOptions(command);
    add("--assets", apply.assets, "Folder with the library's assets", "DIR");
    command.add_flag("--scrambled", apply.read.scrambled, "The inputs are scrambled picture files");
    command.add_flag("--quiet", apply.quiet, "Only errors on standard error");
    command.add_flag("--verbose", apply.verbose, "Show the library's log");
}

void CommandLine::addBatchOptions(CLI::App& command) {
    command.add_flag("--recursive", apply.recursive, "Look into the folders of input folders as well");
    addOption(command, "--suffix", apply.suffix,
              "Put TEXT behind the names of outputs, beside the inputs without OUT", "TEXT");
    addOption(command, "--format", apply.format, "Write png, jpg, tif, webp or avif, whatever the inputs are",
              "FORMAT");
    command.add_flag("--in-place", apply.inPlace,
                     "Write over the inputs, which keep their time and permissions");
    command.add_flag("--no-clobber", apply.noClobber, "Leave outputs alone that are there");
    command.add_flag("--resume", apply.resume, "Skip inputs whose output is there and not older");
    addOption(command, "--report", apply.report, "Write what became of each input", "REPORT.json");
    addOption(command, "--jobs", apply.jobs, "Inputs to work on at once; by itself as many as do well", "N")
        ->check(CLI::Range(1u, kMostJobs));
    addOption(command, "--max-megapixels", saveWords.megapixels,
              "Refuse larger pictures; 268 where not given", "N")
        ->check(CLI::Range(0.001, kMostMegapixels));
}

void CommandLine::addSaveOptions(CLI::App& command) {
    SaveOptions& save = apply.save;
    addOption(command, "--quality", save.quality,
              "Of JPEG (where not given that of the input, or 95), WebP and AVIF", "1..100")
        ->check(CLI::Range(1, 100));
    addOption(command, "--subsampling", saveWords.subsampling, "Of colour in JPEG and AVIF: 444 or 420",
              "444|420");
    command.add_flag("--lossless", save.lossless, "WebP and AVIF without loss");
    addOption(command, "--compression", save.compression, "Effort of PNG; 0 leaves TIFF uncompressed", "0..9")
        ->check(CLI::Range(0, 9));
    command.add_flag("--strip", save.strip, "Leave out EXIF, XMP, captions and comments");
    command.add_flag("--no-gps", save.noGps, "Leave out where the picture was made");
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
    add("IN", depth.inputs, "Pictures to read, or folders of them", "...")->required();
    add("-o,--output", depth.output, "Depth map to write, or a folder for several inputs", "DEPTH.png")
        ->required();
    add("--mask", depth.mask, "Person mask: white where the person is", "MASK.png");
    add("--person-mask", depth.personMask,
        "Write the person mask that was used (a folder for several inputs)", "MASK.png");
    add("--set", depth.assignments,
        "model=FILE, the depth network: a file, or a folder with portrait_depth.onnx; or "
        "subject=auto|person|none: whether people are kept whole by a network",
        "NAME=VALUE")
        ->allow_extra_args(false);
    add("--compare", depth.compare, "Write picture, map and the map in colours side by side", "SHEET.png");
    add("--assets", depth.assets, "Folder with the library's assets", "DIR");
    add("--jobs", depth.jobs, "Inputs to work on at once; by itself as many as do well", "N")
        ->check(CLI::Range(1u, kMostJobs));
    command.add_flag("--recursive", depth.recursive, "Look into the folders of input folders as well");
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

void CommandLine::addNetworks() {
    CLI::App& command = addCommand("networks");
    command.add_flag("--json", networks.json, "Print JSON for scripts");
    command.add_option("--assets", networks.assets, "Folder with the library's assets")->option_text("DIR");
}

namespace {

/// Takes the effects before the last "+" of a chain out of the words. Each is parsed with what belongs to it; other
/// words among them are for all of the chain.
std::vector<std::string> takeSteps(const std::vector<std::string>& words, std::vector<StepOptions>& steps) {
    const auto end = std::find(words.begin(), words.end(), "--");
    if (words.empty() || words[0] != "apply") return words;
    std::vector<std::string> rest;
    auto at = words.begin() + 1;
    for (auto plus = std::find(at, end, "+"); plus != end; at = plus + 1, plus = std::find(at, end, "+")) {
        CLI::App step;
        StepOptions& options = steps.emplace_back();
        addStepOptions(step, options);
        step.allow_windows_style_options(false);
        step.allow_extras();
        std::vector<std::string> reversed(std::make_reverse_iterator(plus), std::make_reverse_iterator(at));
        step.parse(reversed);
        if (options.effect.empty()) throw UsageError("an effect is missing before '+'");
        for (const auto& word : step.remaining()) rest.push_back(word);
    }
    if (!steps.empty() && (at == words.end() || at->starts_with("-")))
        throw UsageError("an effect is missing behind '+'");
    std::vector<std::string> last = {"apply"};
    if (!steps.empty()) last.push_back(*at++);
    last.insert(last.end(), rest.begin(), rest.end());
    last.insert(last.end(), at, end);
    // The parser would take the word "--" for the end of the command: names with a path need none.
    for (auto name = end; name != words.end(); ++name)
        if (name != end) last.push_back(name->starts_with("-") ? "./" + *name : *name);
    return last;
}

}  // namespace

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
        const std::vector<std::string> last = takeSteps(words, line.apply.steps);
        std::vector<std::string> reversed(last.rbegin(), last.rend());  // as the parser wants them
        line.app.parse(reversed);
        return flushResults(dispatch(line));
    } catch (const CLI::ParseError& problem) {
        if (problem.get_exit_code() == 0) {
            line.app.exit(problem);  // help or version
            return flushResults(kDone);
        }
        Messages(false).error("", describeProblem(line, words, problem));
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
