#include "cli/commands/applyPlan.h"

#include <map>

#include "cli/files/writePicture.h"
#include "cli/library.h"

namespace zelcli {

namespace {

namespace fs = std::filesystem;

bool isFolder(const std::string& path) {
    std::error_code error;
    return !path.empty() && fs::is_directory(path, error);
}

/// Whether `path` names a folder to write into, for this number of inputs. `option` names it in messages.
bool meansFolder(const std::string& path, std::size_t inputs, const char* option) {
    if (isFolder(path) || (!path.empty() && path.back() == '/')) return true;
    if (inputs == 1) return false;
    std::error_code error;
    if (fs::exists(path, error) || formatOfSuffix(path))
        throw UsageError(std::string(option) + " must be a folder for several inputs, not '" + path + "'");
    return true;
}

/// The name of an input's output in a folder.
std::string outputName(const fs::path& input) {
    return formatOfSuffix(input) ? input.filename().string() : input.stem().string() + ".png";
}

/// Two inputs must not write one file.
void refuseCollisions(const std::vector<ApplyItem>& items) {
    std::map<fs::path, std::string> owners;
    for (const ApplyItem& item : items) {
        for (const UserPath* target : {&item.output, &item.sheet, &item.maskOut, &item.depthOut}) {
            if (target->shown.empty()) continue;
            const auto [owner, fresh] = owners.emplace(target->real.lexically_normal(), item.input.shown);
            if (!fresh)
                throw UsageError("'" + target->shown + "' would be written twice (for '" + owner->second +
                                 "' and '" + item.input.shown + "')");
        }
    }
}

/// Where the planes go that an effect gives back.
struct GivenBack {
    std::string path, suffix;  // path empty: nowhere
    bool toFolder;

    GivenBack(const std::string& asked, std::size_t inputs, const char* option, const char* fileSuffix)
        : path(asked), suffix(fileSuffix), toFolder(!asked.empty() && meansFolder(asked, inputs, option)) {
        if (!path.empty() && !toFolder && formatOfSuffix(path) != PictureFormat::png)
            throw UsageError(std::string(option) + " must end in .png, not '" + path + "'");
    }
    UserPath pathFor(const std::string& stem) const {
        if (path.empty()) return {};
        return toFolder ? UserPath(path) / (stem + suffix) : UserPath(path);
    }
};

}  // namespace

ApplyPlan planApply(const ApplyOptions& options) {
    const std::size_t count = options.inputs.size();
    const bool toFolder = meansFolder(options.output, count, "OUT");
    const bool hasSheet = !options.compare.empty();
    const bool sheetsToFolder = hasSheet && meansFolder(options.compare, count, "--compare");
    if (!toFolder) requireFormat(options.output, "OUT");
    if (hasSheet && !sheetsToFolder) requireFormat(options.compare, "--compare");

    const GivenBack masks(options.maskOut, count, "--mask-out", "-mask.png");
    const GivenBack depths(options.depthOut, count, "--depth-out", "-depth.png");

    ApplyPlan plan;
    if (toFolder) plan.folders.emplace_back(options.output);
    if (sheetsToFolder) plan.folders.emplace_back(options.compare);
    for (const GivenBack* given : {&masks, &depths})
        if (given->toFolder) plan.folders.emplace_back(given->path);
    const UserPath output(options.output);
    for (const std::string& name : options.inputs) {
        ApplyItem item;
        item.input = UserPath(name);
        const std::string stem = fs::path(name).stem().string();
        item.output = toFolder ? output / outputName(name) : output;
        if (hasSheet)
            item.sheet = sheetsToFolder ? UserPath(options.compare) / (stem + "-sheet.png")
                                        : UserPath(options.compare);
        item.maskOut = masks.pathFor(stem);
        item.depthOut = depths.pathFor(stem);
        if (!options.faces.empty())
            item.faces = isFolder(options.faces) ? UserPath(options.faces) / (stem + ".json")
                                                 : UserPath(options.faces);
        plan.items.push_back(item);
    }
    refuseCollisions(plan.items);
    return plan;
}

}  // namespace zelcli
