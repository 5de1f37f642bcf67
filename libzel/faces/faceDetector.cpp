#include "libzel/faces/faceDetector.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "inference/moduleLoader.h"
#include "platform/fileProbe.h"
#include "platform/libraryFolder.h"
#include "platform/processEnvironment.h"
#include "platform/utf8Path.h"
#include "zellab/utils/assetFolders.h"

namespace zel {

namespace {

constexpr const char* kFolder = "/usr/share/opencv4/haarcascades";
constexpr const char* kBelowAssets = "cascades";  // where a package brings them along
constexpr const char* kFolderVariable = "ZEL_CASCADES";
constexpr const char* kCascadeFile = "haarcascade_frontalface_default.xml";

/// Pictures are searched at a long side of at most kLargestSearch; smaller ones than kSmallestSearch are made
/// larger, so that small faces reach the detector's 24 pixels.
constexpr int kLargestSearch = 900, kSmallestSearch = 300;
constexpr double kLargestEnlarging = 4.0;
constexpr double kStep = 1.08;  // from one size of face to the next
constexpr int kLeastVotes = 3;
constexpr double kSmallestFace = 0.04;  // of the picture's shorter side
constexpr int kCascadeSide = 24;        // pixels of the smallest face that the detector knows

}  // namespace

struct FaceDetector::Cascade {
    explicit Cascade(const ZelNetworkModule* opened) : module(opened) {}
    ~Cascade() { module->closeCascade(cascade); }
    Cascade(const Cascade&) = delete;
    Cascade& operator=(const Cascade&) = delete;

    const ZelNetworkModule* const module;
    ZelCascade* cascade = nullptr;
};

std::filesystem::path detectorFolder() {
    const auto named = zellab::platform::environmentText(kFolderVariable);
    if (named && !named->empty()) return zellab::platform::utf8Path(*named);
    for (const std::string& assets : zellab::assetFolders(zellab::platform::folderOfCode(kBelowAssets)))
        if (const std::string folder = zellab::assetPath(assets, kBelowAssets);
            zellab::platform::isDirectory(folder.c_str()))
            return zellab::platform::utf8Path(folder);
    return kFolder;
}

FaceDetector::FaceDetector(const std::filesystem::path& folder) {
    std::string absence;
    const ZelNetworkModule* module = zellab::platform::networkModule(absence);
    if (!module) throw DetectorMissing(absence);
    m_cascade = std::make_unique<Cascade>(module);
    const auto file = folder / kCascadeFile;
    std::error_code error;
    if (std::filesystem::is_regular_file(file, error))
        m_cascade->cascade = module->openCascade(file.string().c_str(), nullptr, 0);
    if (!m_cascade->cascade)
        throw DetectorMissing("the face detector's data cannot be read from " + file.string() +
                              "; the package opencv-data brings them");
}

FaceDetector::~FaceDetector() = default;

std::vector<FaceBox> FaceDetector::find(const std::vector<unsigned char>& luma, int width, int height) {
    const int longSide = std::max(width, height);
    double scale = 1;
    if (longSide > kLargestSearch) scale = static_cast<double>(kLargestSearch) / longSide;
    if (longSide < kSmallestSearch)
        scale = std::min(kLargestEnlarging, static_cast<double>(kSmallestSearch) / longSide);
    ZelCascadeSearch search{luma.data(), width, height, 1, 1, kStep, kLeastVotes, kCascadeSide};
    search.searchedWidth = std::max(1, static_cast<int>(std::lround(width * scale)));
    search.searchedHeight = std::max(1, static_cast<int>(std::lround(height * scale)));
    const int shortSide = std::min(search.searchedWidth, search.searchedHeight);
    if (shortSide < kCascadeSide) return {};
    search.smallest = std::max(kCascadeSide, static_cast<int>(kSmallestFace * shortSide));

    ZelCascadeBoxes found{};
    char reason[256];
    if (!m_cascade->module->searchCascade(m_cascade->cascade, &search, &found, reason, sizeof reason))
        throw std::runtime_error(std::string("the search for faces failed (") + reason + ")");
    std::vector<FaceBox> boxes;
    const auto back = static_cast<float>(1 / scale);
    for (std::size_t i = 0; i < found.count; ++i) {
        const ZelCascadeBox& box = found.boxes[i];
        boxes.push_back({static_cast<float>(box.x) * back, static_cast<float>(box.y) * back,
                         static_cast<float>(box.width) * back, box.votes, 0});
    }
    return boxes;
}

}  // namespace zel
