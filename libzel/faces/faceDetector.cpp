#include "libzel/faces/faceDetector.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>

namespace zel {

namespace {

constexpr const char* kFolder = "/usr/share/opencv4/haarcascades";
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
    cv::CascadeClassifier classifier;
};

std::filesystem::path detectorFolder() {
    const char* named = std::getenv(kFolderVariable);
    return named && *named ? named : kFolder;
}

FaceDetector::FaceDetector(const std::filesystem::path& folder) : m_cascade(std::make_unique<Cascade>()) {
    const auto file = folder / kCascadeFile;
    std::error_code error;
    bool loaded = false;
    try {
        loaded = std::filesystem::is_regular_file(file, error) && m_cascade->classifier.load(file.string());
    } catch (const cv::Exception&) {  // told below like a missing file
    }
    if (!loaded)
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
    const cv::Size size(std::max(1, static_cast<int>(std::lround(width * scale))),
                        std::max(1, static_cast<int>(std::lround(height * scale))));
    if (std::min(size.width, size.height) < kCascadeSide) return {};

    // The picture is only read; the library's header has no form for that.
    const cv::Mat whole(height, width, CV_8UC1, const_cast<unsigned char*>(luma.data()));
    cv::Mat searched;
    cv::resize(whole, searched, size, 0, 0, scale < 1 ? cv::INTER_AREA : cv::INTER_LINEAR);
    cv::equalizeHist(searched, searched);
    const int smallest =
        std::max(kCascadeSide, static_cast<int>(kSmallestFace * std::min(size.width, size.height)));
    std::vector<cv::Rect> found;
    std::vector<int> votes;
    m_cascade->classifier.detectMultiScale(searched, found, votes, kStep, kLeastVotes, 0,
                                           {smallest, smallest});

    std::vector<FaceBox> boxes;
    const auto back = static_cast<float>(1 / scale);
    for (std::size_t i = 0; i < found.size(); ++i) {
        const cv::Rect& r = found[i];
        boxes.push_back({static_cast<float>(r.x) * back, static_cast<float>(r.y) * back,
                         static_cast<float>(r.width) * back, votes[i]});
    }
    return boxes;
}

}  // namespace zel
