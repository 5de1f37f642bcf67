#pragma once

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <vector>

namespace zel {

/// The detector's data or the inference module are missing: the text says which, and what brings them.
class DetectorMissing : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A square where a face may be, in pixels, and how many of the detector's views agree on it. It stands upright
/// at x, y, and is then turned about its middle, in radians, clockwise as seen.
struct FaceBox {
    float x = 0, y = 0, side = 0;
    int votes = 0;
    float turn = 0;
};

/// Finds upright faces that look at the camera. One detector serves one thread.
class FaceDetector {
public:
    /// Opens the inference module and reads the detector's data from this folder. Throws DetectorMissing.
    explicit FaceDetector(const std::filesystem::path& folder);
    ~FaceDetector();

    /// Boxes in a grey picture of width by height bytes, in no order; false ones among them.
    std::vector<FaceBox> find(const std::vector<unsigned char>& luma, int width, int height);

private:
    struct Cascade;
    std::unique_ptr<Cascade> m_cascade;
};

/// Where the operating system's package puts the detector's data; the environment may name another folder.
std::filesystem::path detectorFolder();

}  // namespace zel
