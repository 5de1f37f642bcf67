#include "cli/commands/applyPlan.h"

#include <algorithm>
#include <map>
#include <set>

#include "cli/files/writePicture.h"
#include "platform/utf8Path.h"

namespace zelcli {

namespace {

namespace fs = std::filesystem;
using zellab::platform::utf8Path;

bool isFolder(const std::string& path) {
    std::error_code error;
    return !path.empty() && fs::is_directory(utf8Path(path), error);
}

/// Whether `path` names a folder to write into. `option` names it in messages.
bool meansFolder(const std::string& path, bool several, const char* option) {
    if (isFolder(path) || (!path.empty() && path.back() == '/')) return true;
    if (!several) return false;
    std::error_code error;
    if (path == kStandardStream || fs::exists(utf8Path(path), error) || formatOfSuffix(path))
        throw UsageError(std::string(option) + " must be a folder for several inputs, not '" + path + "'");
    return true;
}

/// A picture to read, and the folder below OUT that its output goes to.
struct Found {
    std::string path;
    fs::path below;
};

/// The pictures of a folder in the order of their names.
class FolderSearch {
public:
    FolderSearch(ApplyPlan& plan, bool recursive) : m_plan(plan), m_recursive(recursive) {}

    std::vector<Found> search(const std::string& folder) {
        m_found.clear();
        visit(utf8Path(folder), {});
        if (m_found.empty() && m_readable) m_plan.failures.emplace_back(folder, "holds no pictures");
        return m_found;
    }

private:
    void visit(const fs::path& folder, const fs::path& below) {
        std::error_code error;
        std::vector<fs::path> entries;
        for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error))
            if (at->path().filename().string().front() != '.') entries.push_back(at->path());
        if (error) {
            m_readable = false;
            m_plan.failures.emplace_back(folder.string(), error.message());
        }
        std::sort(entries.begin(), entries.end());
        for (const fs::path& entry : entries) {
            if (!fs::is_directory(entry, error)) {
                if (looksLikePicture(entry)) m_found.push_back({entry.string(), below});
            } else if (m_recursive && !fs::is_symlink(entry, error)) {
                visit(entry, below / entry.filename());
            }
        }
    }

    ApplyPlan& m_plan;
    const bool m_recursive;
    bool m_readable = true;
    std::vector<Found> m_found;
};

/// The name of an input's output.
std::string outputName(const fs::path& input, const ApplyOptions& options) {
    const std::string suffix = !options.format.empty() ? suffixOf(*formatOfWord(options.format))
                               : formatOfSuffix(input) ? input.extension().string()
                                                       : ".png";
    return input.stem().string() + options.suffix + suffix;
}

fs::path realFile(const UserPath& path) {
    std::error_code error;
    const fs::path real = fs::weakly_canonical(path.real, error);
    return error ? path.real.lexically_normal() : real;
}

/// Two inputs must not write one file, and nothing must land on an input unless that is asked for.
void refuseCollisions(const std::vector<ApplyItem>& items, bool inPlace) {
    std::map<fs::path, std::string> owners;
    std::set<fs::path> inputs;
    for (const ApplyItem& item : items) inputs.insert(realFile(item.input));
    for (const ApplyItem& item : items) {
        for (const UserPath* target : {&item.output, &item.sheet, &item.maskOut, &item.depthOut}) {
            if (target->shown.empty() || target->isStream()) continue;
            const fs::path real = realFile(*target);
            const auto [owner, fresh] = owners.emplace(real, item.input.shown);
            if (!fresh)
                throw UsageError("'" + target->shown + "' would be written twice (for '" + owner->second +
                                 "' and '" + item.input.shown + "')");
            if (inputs.contains(real) && !(inPlace && target == &item.output))
                throw UsageError("'" + target->shown +
                                 "' is an input and would be written over; --in-place is for that");
        }
    }
}

/// Where the planes go that an effect gives back.
struct GivenBack {
    std::string path, suffix;  // path empty: nowhere
    bool toFolder;

    GivenBack(const std::string& asked, bool several, const char* option, const char* fileSuffix)
        : path(asked), suffix(fileSuffix), toFolder(!asked.empty() && meansFolder(asked, several, option)) {
        if (!path.empty() && !toFolder && formatOfSuffix(path) != PictureFormat::png)
            throw UsageError(std::string(option) + " must end in .png, not '" + path + "'");
    }
    UserPath pathFor(const fs::path& below, const std::string& stem) const {
        if (path.empty()) return {};
        return toFolder ? UserPath(path) / (below / utf8Path(stem + suffix)).string() : UserPath(path);
    }
};

/// The one step's plane of a chain that is asked for.
std::string givenBack(const ApplyOptions& options, std::string StepOptions::*member) {
    for (const StepOptions& step : options.steps)
        if (!(step.*member).empty()) return step.*member;
    return {};
}

void checkWords(const ApplyOptions& options) {
    const auto refuse = [](bool together, const char* why) {
        if (together) throw UsageError(why);
    };
    refuse(options.inPlace && (!options.output.empty() || !options.suffix.empty() || !options.format.empty()),
           "--in-place takes no --output, --suffix or --format");
    refuse(options.inPlace && options.noClobber, "--in-place takes no --no-clobber");
    refuse(options.inPlace && options.resume,
           "--in-place takes no --resume: its files do not show what is done");
    refuse(!options.inPlace && options.output.empty() && options.suffix.empty(),
           "--output is required (or --suffix, or --in-place)");
    refuse(options.suffix.find('/') != std::string::npos, "--suffix is a part of a name and takes no '/'");
    refuse(!options.format.empty() && !formatOfWord(options.format),
           "--format is png, jpg, tif, webp or avif");
    const auto streams = std::count(options.inputs.begin(), options.inputs.end(), kStandardStream);
    refuse(streams > 0 && options.inputs.size() > 1, "standard input (-) is an input of its own");
    refuse(streams > 0 && (options.inPlace || options.output.empty()), "standard input (-) needs --output");
}

}  // namespace

ApplyPlan planApply(const ApplyOptions& options) {
    checkWords(options);
    ApplyPlan plan;
    FolderSearch folderSearch(plan, options.recursive);
    std::vector<Found> inputs;
    bool several = options.inputs.size() > 1;
    for (const std::string& name : options.inputs) {
        if (!isFolder(name)) {
            inputs.push_back({name, {}});
            continue;
        }
        several = true;
        const auto found = folderSearch.search(name);
        inputs.insert(inputs.end(), found.begin(), found.end());
    }
    const bool beside = options.output.empty();
    const bool toFolder = !beside && meansFolder(options.output, several, "OUT");
    const bool hasSheet = !options.compare.empty();
    const bool sheetsToFolder = hasSheet && meansFolder(options.compare, several, "--compare");
    if (!beside && !toFolder && options.output != kStandardStream) requireFormat(options.output, "OUT");
    if (hasSheet && !sheetsToFolder) requireFormat(options.compare, "--compare");
    const GivenBack masks(givenBack(options, &StepOptions::maskOut), several, options.maskOutName,
                          "-mask.png");
    const GivenBack depths(givenBack(options, &StepOptions::depthOut), several, "--depth-out", "-depth.png");

    std::set<std::string> folders;
    const auto needFolder = [&](const UserPath& folder) {
        if (folders.insert(folder.shown).second) plan.folders.push_back(folder);
    };
    const auto needFolderOf = [&](const std::string& root, const fs::path& below) {
        needFolder(below.empty() ? UserPath(root) : UserPath(root) / below.string());
    };
    for (const auto& [name, below] : inputs) {
        ApplyItem item;
        item.input = UserPath(name);
        const std::string stem = item.input.isStream() ? "picture" : utf8Path(name).stem().string();
        if (options.inPlace) {
            item.output = item.input;
        } else if (beside) {
            item.output = UserPath(
                (utf8Path(name).parent_path() / utf8Path(outputName(utf8Path(name), options))).string());
        } else if (toFolder) {
            item.output = UserPath(options.output) / (below / outputName(name, options)).string();
            needFolderOf(options.output, below);
        } else {
            item.output = UserPath(options.output);
        }
        item.format = item.output.isStream() || options.inPlace
                          ? (options.format.empty() ? std::nullopt : formatOfWord(options.format))
                          : formatOfSuffix(item.output.shown);
        if (hasSheet)
            item.sheet = sheetsToFolder
                             ? UserPath(options.compare) / (below / utf8Path(stem + "-sheet.png")).string()
                             : UserPath(options.compare);
        if (sheetsToFolder) needFolderOf(options.compare, below);
        item.maskOut = masks.pathFor(below, stem);
        item.depthOut = depths.pathFor(below, stem);
        for (const GivenBack* given : {&masks, &depths})
            if (given->toFolder) needFolderOf(given->path, below);
        if (!options.faces.empty())
            item.faces = isFolder(options.faces)
                             ? UserPath(options.faces) / (below / utf8Path(stem + ".json")).string()
                             : UserPath(options.faces);
        plan.items.push_back(item);
    }
    refuseCollisions(plan.items, options.inPlace);
    return plan;
}

}  // namespace zelcli
