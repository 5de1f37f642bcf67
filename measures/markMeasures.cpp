// How far the landmarks that both finders place on photographs lie from marks set by hand; docs/measures.md holds
// what it prints. Lengths are percent of the distance of the pupils.
//   zel_mark_measures PHOTOGRAPHS MARKS NETWORKS [HALF]
// HALF is tune, held or both (the default): who tunes a finder leaves the half alone that is held back.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "libzel/faces/faceFinder.h"
#include "libzel/faces/faceFrame.h"
#include "libzel/faces/networkFinder.h"
#include "libzel/failure.h"
#include "photographMarks.h"

namespace {

using namespace zelmeasures;

/// A face is found where its landmarks lie, in the mean, within this share of the pupils' distance.
constexpr double kFound = 0.5;

constexpr std::size_t kFirstContour = 1, kLastContour = 18;

struct Group {
    const char* name;
    std::set<std::size_t> landmarks;  // those of the contour are measured against the marked edge
};

const std::vector<Group> kGroups = {
    {"eyes", {19, 21, 25, 26, 65, 67, 71, 72}},
    {"pupils", {24, 70}},
    {"brows", {29, 31, 33, 35, 75, 77, 79, 81}},
    {"nose", {58, 62, 63, 64}},
    {"mouth", {37, 38, 45, 46, 47, 54}},
    {"chin", {0}},
    {"jaw", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18}},
};

double distance(Point a, Point b) {
    return std::hypot(static_cast<double>(a.x) - static_cast<double>(b.x),
                      static_cast<double>(a.y) - static_cast<double>(b.y));
}

/// How far a point lies from the lines. Nothing where it lies beyond the end of the nearest one: there the edge was
/// not seen.
std::optional<double> distanceFromEdges(Point point, const std::vector<std::vector<Point>>& edges) {
    double nearest = std::numeric_limits<double>::max();
    bool beyond = true;
    for (const auto& line : edges)
        for (std::size_t i = 1; i < line.size(); ++i) {
            const Point from = line[i - 1], to = line[i];
            const float dx = to.x - from.x, dy = to.y - from.y;
            const float along =
                ((point.x - from.x) * dx + (point.y - from.y) * dy) / std::max(dx * dx + dy * dy, 1e-6f);
            const float on = std::clamp(along, 0.0f, 1.0f);
            const double off = distance(point, {from.x + on * dx, from.y + on * dy});
            if (off >= nearest) continue;
            nearest = off;
            beyond = (i == 1 && along < 0) || (i + 1 == line.size() && along > 1);
        }
    if (beyond) return std::nullopt;
    return nearest;
}

/// By landmark: how far each that is marked lies off, in pupil distances.
using Errors = std::map<std::size_t, double>;

Errors errorsOf(const zel::Landmarks& found, const MarkedFace& truth) {
    Errors errors;
    const auto unit = static_cast<double>(truth.pupilDistance);
    for (const auto& [number, point] : truth.points) errors[number] = distance(found[number], point) / unit;
    for (std::size_t i = kFirstContour; i <= kLastContour; ++i)
        if (const auto off = distanceFromEdges(found[i], truth.edges)) errors[i] = *off / unit;
    return errors;
}

double meanOfMarks(const Errors& errors, const MarkedFace& truth) {
    double sum = 0;
    for (const auto& entry : truth.points) sum += errors.at(entry.first);
    return sum / static_cast<double>(truth.points.size());
}

bool isWithin(const zel::Face& face, const zel::Image& image, const std::array<float, 4>& box) {
    const float x = (face.rect[0] + face.rect[2] / 2) * static_cast<float>(image.width),
                y = (face.rect[1] + face.rect[3] / 2) * static_cast<float>(image.height);
    return x >= box[0] && x < box[0] + box[2] && y >= box[1] && y < box[1] + box[3];
}

/// What one finder made of one photograph.
struct Result {
    std::vector<std::optional<Errors>> faces;  // of the marked ones
    int falseFaces = 0;
};

Result judge(const zel::FaceSet& found, const MarkedPhotograph& truth, const zel::Image& image) {
    Result result;
    std::vector<bool> used(found.faces.size());
    for (const MarkedFace& marked : truth.faces) {
        result.faces.emplace_back();
        double least = kFound;
        std::size_t which = used.size();
        for (std::size_t i = 0; i < found.faces.size(); ++i) {
            if (used[i]) continue;
            const Errors errors = errorsOf(zel::landmarksInPixels(found.faces[i], image), marked);
            const double mean = meanOfMarks(errors, marked);
            if (mean >= least) continue;
            least = mean, which = i;
            result.faces.back() = errors;
        }
        if (which < used.size()) used[which] = true;
    }
    for (std::size_t i = 0; i < used.size(); ++i)
        result.falseFaces +=
            !used[i] && std::none_of(truth.drawn.begin(), truth.drawn.end(),
                                     [&](const auto& box) { return isWithin(found.faces[i], image, box); });
    return result;
}

/// What is counted and gathered over one half of the photographs.
struct Half {
    int faces = 0;
    struct Finder {
        int missed = 0, falseFaces = 0;
        std::vector<Errors> all, shared;  // of every face that it found, and of those that both found
    } networks, builtIn;
};

void add(Half& half, const MarkedPhotograph& truth, const Result& networks, const Result& builtIn) {
    half.networks.falseFaces += networks.falseFaces;
    half.builtIn.falseFaces += builtIn.falseFaces;
    for (std::size_t i = 0; i < truth.faces.size(); ++i) {
        ++half.faces;
        const auto &ours = networks.faces[i], &theirs = builtIn.faces[i];
        half.networks.missed += !ours;
        half.builtIn.missed += !theirs;
        if (ours) half.networks.all.push_back(*ours);
        if (theirs) half.builtIn.all.push_back(*theirs);
        if (!ours || !theirs) continue;
        half.networks.shared.push_back(*ours);
        half.builtIn.shared.push_back(*theirs);
    }
}

struct Spread {
    double median = 0, worstTenth = 0;  // percent
    std::size_t count = 0;
};

/// Of the landmarks of a group; a null one stands for all of them.
Spread spreadOf(const std::vector<Errors>& faces, const Group* group) {
    std::vector<double> all;
    for (const Errors& errors : faces)
        for (const auto& [number, error] : errors)
            if (!group || group->landmarks.contains(number)) all.push_back(100 * error);
    if (all.empty()) return {};
    std::sort(all.begin(), all.end());
    return {all[all.size() / 2], all[all.size() * 9 / 10], all.size()};
}

void printRow(const char* name, const Half& half, const Group* group) {
    const Spread whole = spreadOf(half.networks.all, group), ours = spreadOf(half.networks.shared, group),
                 theirs = spreadOf(half.builtIn.shared, group);
    std::printf("| %s | %zu | %.1f / %.1f | %.1f / %.1f | %.1f / %.1f | %.2f / %.2f |\n", name, whole.count,
                whole.median, whole.worstTenth, ours.median, ours.worstTenth, theirs.median,
                theirs.worstTenth, ours.median / theirs.median, ours.worstTenth / theirs.worstTenth);
}

void print(const char* title, const Half& half) {
    std::printf(
        "\n%s: %d faces; networks: %d missed, %d false; built-in: %d missed, %d false.\n\n"
        "| marks | number | networks, all faces | networks | built-in | networks of built-in |\n"
        "|---|--:|--:|--:|--:|--:|\n",
        title, half.faces, half.networks.missed, half.networks.falseFaces, half.builtIn.missed,
        half.builtIn.falseFaces);
    for (const Group& group : kGroups) printRow(group.name, half, &group);
    printRow("all", half, nullptr);
}

/// One line a face, for who wants to look: the median of each group, and the landmark that is farthest off.
void tell(const std::string& name, const char* finder, const Result& result) {
    for (const auto& errors : result.faces) {
        std::fprintf(stderr, "%-15s %-8s", name.c_str(), finder);
        if (!errors) {
            std::fprintf(stderr, " missed\n");
            continue;
        }
        for (const Group& group : kGroups)
            std::fprintf(stderr, " %s %4.1f", group.name, spreadOf({*errors}, &group).median);
        const auto worst = std::max_element(errors->begin(), errors->end(),
                                            [](const auto& a, const auto& b) { return a.second < b.second; });
        std::fprintf(stderr, "; %zu off by %.1f\n", worst->first, 100 * worst->second);
    }
    if (result.falseFaces)
        std::fprintf(stderr, "%-15s %-8s %d false\n", name.c_str(), finder, result.falseFaces);
}

void measure(const std::string& folder, const std::string& marks, const std::string& networkFolder,
             const std::string& wanted) {
    std::string reason;
    const auto networks = zel::NetworkFinder::load(networkFolder, reason);
    if (!reason.empty()) throw zel::Failure(reason);
    zel::FaceDetector detector(zel::detectorFolder());
    Half tune, held;
    for (const MarkedPhotograph& photograph : readMarks(readText(marks))) {
        if (wanted != "both" && photograph.half != "none" && photograph.half != wanted) continue;
        const zel::Image image = loadPhotograph(folder, photograph.name);
        const Result byNetworks =
            judge(networks->find({image.rgba.data(), image.width, image.height}), photograph, image);
        const Result builtIn = judge(zel::findFaces(image, detector), photograph, image);
        tell(photograph.name, "networks", byNetworks);
        tell(photograph.name, "built-in", builtIn);
        add(photograph.half == "held" ? held : tune, photograph, byNetworks, builtIn);
    }
    if (wanted != "held") print("For tuning", tune);
    if (wanted != "tune") print("Held back", held);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string half = argc > 4 ? argv[4] : "both";
    if (argc < 4 || (half != "both" && half != "tune" && half != "held")) {
        std::fprintf(stderr, "Usage: zel_mark_measures PHOTOGRAPHS MARKS NETWORKS [tune|held|both]\n");
        return 2;
    }
    try {
        measure(argv[1], argv[2], argv[3], half);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
