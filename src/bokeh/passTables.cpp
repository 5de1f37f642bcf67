#include "bokeh/passTables.h"

#include <cmath>
#include <cstdlib>

namespace zellab::Bokeh {

// clang-format off
/// Measured kernels: soft discs with a bright rim on one side.
const std::array<float, 165> kBokehData = {
    // 1 by 1
    1.0f,
    // 3 by 3
    0.600601f, 0.979334f, 0.571983f,
    1.02113f, 1.21676f, 1.59127f,
    0.783005f, 2.06403f, 1.17188f,
    // 5 by 5
    0.0703956f, 0.272783f, 0.344864f, 0.253088f, 0.0560787f,
    0.276767f, 0.405998f, 0.39838f, 0.402333f, 0.279464f,
    0.357235f, 0.408819f, 0.398118f, 0.516865f, 0.604969f,
    0.27592f, 0.536442f, 0.653722f, 1.04054f, 0.493306f,
    0.0675715f, 0.464775f, 0.820797f, 0.538283f, 0.0624815f,
    // 7 by 7
    0.00637804f, 0.0670931f, 0.146832f, 0.168947f, 0.13827f, 0.056352f, 0.00415403f,
    0.0677713f, 0.1861f, 0.206533f, 0.202832f, 0.201627f, 0.169779f, 0.0519453f,
    0.149985f, 0.209957f, 0.20721f, 0.202837f, 0.202598f, 0.237333f, 0.161616f,
    0.175119f, 0.210613f, 0.206571f, 0.202818f, 0.202585f, 0.362159f, 0.277514f,
    0.144622f, 0.211721f, 0.206594f, 0.203744f, 0.278393f, 0.614422f, 0.208589f,
    0.0595517f, 0.259073f, 0.447021f, 0.54791f, 0.708799f, 0.430589f, 0.051144f,
    0.0044011f, 0.0657742f, 0.243808f, 0.349211f, 0.225674f, 0.0526062f, 0.00282267f,
    // 9 by 9
    0.000326772f, 0.0122651f, 0.052886f, 0.0884765f, 0.0975933f, 0.0839919f, 0.0457565f, 0.00885904f, 0.000137762f,
    0.0123855f, 0.0753889f, 0.119463f, 0.123735f, 0.122649f, 0.121999f, 0.112153f, 0.0628782f, 0.00791985f,
    0.0538171f, 0.119849f, 0.127302f, 0.124228f, 0.122692f, 0.122692f, 0.121407f, 0.113449f, 0.040494f,
    0.0907132f, 0.126945f, 0.127309f, 0.124173f, 0.122692f, 0.122692f, 0.121414f, 0.190568f, 0.0908018f,
    0.101109f, 0.12736f, 0.127173f, 0.123779f, 0.122692f, 0.122692f, 0.12444f, 0.302408f, 0.1233f,
    0.0877428f, 0.126723f, 0.127133f, 0.123709f, 0.122692f, 0.12301f, 0.203249f, 0.402971f, 0.0897076f,
    0.0484162f, 0.125543f, 0.163757f, 0.144031f, 0.154991f, 0.253599f, 0.473403f, 0.267971f, 0.0364378f,
    0.00931277f, 0.075377f, 0.240517f, 0.388558f, 0.458377f, 0.473109f, 0.279264f, 0.0658659f, 0.00586699f,
    0.000142701f, 0.00848241f, 0.0448198f, 0.107122f, 0.140015f, 0.097472f, 0.0375427f, 0.00596111f, 5.10236e-05f,
};
// clang-format on

std::array<float, 3 * kRecords> spinTable(bool spin) {
    std::array<float, 3 * kRecords> table;
    for (int i = 0; i < kRecords; ++i) {
        const float angle = spin ? rotationAngle(i / kFrames) : 0.0f;
        float* const entry = table.data() + std::ptrdiff_t{3} * i;
        entry[0] = std::cos(angle);
        entry[1] = std::sin(angle);
        entry[2] = static_cast<float>(i % kFrames);
    }
    return table;
}

RgbaImage identityLut() {
    constexpr int kLevels = 64, kTilesAcross = 8, kSide = kTilesAcross * kLevels;
    const auto level = [](int i) { return static_cast<Byte>((i * 255 * 2 + 63) / (2 * 63)); };  // rounded
    RgbaImage lut(kSide, kSide);
    Byte* pixel = lut.data();
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x, pixel += 4) {
            pixel[0] = level(x % kLevels);
            pixel[1] = level(y % kLevels);
            pixel[2] = level(y / kLevels * kTilesAcross + x / kLevels);
            pixel[3] = 255;
        }
    return lut;
}

std::vector<Byte> noisePixels() {
    std::vector<Byte> pixels(sampleCount(kNoiseSide, kNoiseSide, 4), 255);
    for (std::size_t i = 0; i < pixels.size(); i += 4)
        for (std::size_t c = 0; c < 3; ++c) pixels[i + c] = static_cast<Byte>(std::rand() % 256);
    return pixels;
}

}  // namespace zellab::Bokeh
