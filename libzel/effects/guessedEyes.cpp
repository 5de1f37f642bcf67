#include "libzel/effects/guessedEyes.h"

#include <algorithm>

#include "frame/zel_log.h"

namespace zel {

namespace {

/// Above this the guess counts as one.
constexpr float kMostlyGuessed = 0.5f;

/// Landmarks in the middles of the eyes' openings.
constexpr std::size_t kLeftEye = 20, kRightEye = 66;

}  // namespace

EyeReasons hiddenEyes(const Face& face) {
    const auto reason = [&](zel_face_group eye) {
        return face.guessed[eye] > kMostlyGuessed ? kEyeIsHidden : "";
    };
    return {reason(ZEL_GROUP_LEFT_EYE), reason(ZEL_GROUP_RIGHT_EYE)};
}

void tellEyesThatStay(int face, const EyeReasons& reasons) {
    std::string text;
    for (std::size_t i = 0; i < reasons.size(); ++i) {
        if (reasons[i].empty()) continue;
        text += text.empty() ? ": the " : "; the ";
        text += i == 0 ? "left" : "right";
        text += " eye stays as it is, for it " + reasons[i];
    }
    if (!text.empty()) ZEL_LOG_ERROR("face %d%s", face, text.c_str());
}

void putBackEyes(Image& image, const Image& before, const Face& face, const EyeReasons& stay) {
    const auto w = static_cast<float>(image.width), h = static_cast<float>(image.height);
    const auto at = [&](std::size_t landmark) {
        return zellab::Vector2f{face.points[landmark].x * w, face.points[landmark].y * h};
    };
    const zellab::Vector2f left = at(kLeftEye), right = at(kRightEye);
    const zellab::Vector2f apart{right.x - left.x, right.y - left.y};
    const float middle = 0.5f * ((left.x + right.x) * apart.x + (left.y + right.y) * apart.y);
    std::size_t i = 0;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x, i += 4) {
            const bool isLeft = static_cast<float>(x) * apart.x + static_cast<float>(y) * apart.y < middle;
            if (!stay[isLeft ? 0 : 1].empty())
                std::copy_n(before.rgba.begin() + static_cast<std::ptrdiff_t>(i), 4,
                            image.rgba.begin() + static_cast<std::ptrdiff_t>(i));
        }
}

}  // namespace zel
