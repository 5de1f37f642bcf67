#pragma once

#include "beautykernel/lazybeauty/detailCurve.h"
#include "beautykernel/skintools/featureMaskPainter.h"
#include "beautykernel/skintools/overlayTable.h"
#include "beautykernel/skintools/shadowTable.h"
#include "beautykernel/skintools/spotRepair.h"
#include "facepoints/faceData.h"
#include "reference/slowEdges.h"
#include "reference/slowScale.h"
#include "zellab/imageproc/tone/sfCurve.h"

/// The skin smoother, every stage written out on whole planes. Spot repair and feature painting have
/// references of their own and are the library's here.

namespace slow {

struct LazySettings {
    bool autoLevels, repairSpots;
    int smooth, overlay;
    bool seesSkin = true;  // false: the mask is empty, and only what changes every picture is left
};

struct LazyPicture {
    int width, height;
    Bytes rgba;
    Bytes scaled(int w, int h) const {
        if (w == width && h == height) return rgba;
        return scaleBilinear(rgba, width, height, w, h, 4);
    }
};

inline Bytes blurredPlane(Bytes plane, int w, int h, int radius) {
    stackBlurEx(plane, w, h, w, radius);
    return plane;
}

inline float lazyLuma(float r, float g, float b) {
    return 0.3f * r + 0.59f * g + 0.11f * b;
}

inline int redBlue(int r, int b) {
    return std::max((r < 128 ? 2 * r : 255) - b / 2, 0);
}

inline std::array<int, 3> meanSkin(const Bytes& rgba, int w, int h, const zellab::FaceData* face) {
    long long all[3] = {0, 0, 0}, sums[3] = {0, 0, 0}, count = 0;
    for (std::size_t i = 0; i < rgba.size(); ++i)
        if (i % 4 < 3) all[i % 4] += rgba[i];
    const int mean = static_cast<int>(
        lazyLuma(static_cast<float>(all[0]), static_cast<float>(all[1]), static_cast<float>(all[2])) /
        static_cast<float>(w * h));
    const int least = face || mean < 65 ? mean : mean < 90 ? mean + 70 : 170;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            if (face && (x < face->left || x >= face->right || y < face->top || y >= face->bottom)) continue;
            const unsigned char* p = &rgba[static_cast<std::size_t>(y * w + x) * 4];
            if (redBlue(p[0], p[2]) < least) continue;
            for (int c = 0; c < 3; ++c) sums[c] += p[c];
            ++count;
        }
    if (count == 0) return {160, 130, 126};
    std::array<int, 3> result;
    for (std::size_t c = 0; c < 3; ++c) result[c] = static_cast<int>((sums[c] + count / 2) / count);
    return result;
}

inline Bytes redBlueMask(const Bytes& rgba, int w, int h, const std::array<int, 3>& mean,
                         const std::array<int, 3>& radii = {4, 6, 8}) {
    Bytes mask;
    for (std::size_t i = 0; i < rgba.size(); i += 4) {
        const int c = std::clamp(128 - mean[0] + rgba[i], 0, 255);
        const int d = std::max((c < 128 ? 2 * c : 255) - std::max(rgba[i + 2] - mean[2], 0) / 2, 0);
        mask.push_back(static_cast<unsigned char>(d >= 161 ? 255 : d < 90 ? 0 : d + 30));
    }
    const int side = std::min(w, h);
    return blurredPlane(mask, w, h, radii[side < 200 ? 0 : side < 500 ? 1 : 2]);
}

inline Bytes smoothWeight(const Bytes& grey, const Bytes& mask, int w, int h, const zellab::FaceData* face,
                          int bias) {
    static constexpr int kRange[] = {0, 31, 63, 93, 123, 151, 177, 200, 222, 240, 255},
                         kBand[] = {0, 26, 52, 78, 103, 127, 151, 172, 193, 211, 228, 242, 255};
    const int side = std::min(w, h);
    Bytes r1;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            int low = 255, high = 0;
            for (int j = std::max(y - 1, 0); j <= y; ++j)
                for (int i = std::max(x - 1, 0); i <= x; ++i) {
                    const int v = grey[static_cast<std::size_t>(j * w + i)];
                    low = std::min(low, v), high = std::max(high, v);
                }
            r1.push_back(static_cast<unsigned char>(high - low));
        }
    r1 = blurredPlane(r1, w, h, std::min(side / 80, 12));
    const Bytes wide = blurredPlane(grey, w, h, 12), narrow = blurredPlane(grey, w, h, 5);
    for (std::size_t i = 0; i < r1.size(); ++i) {
        const int band = kBand[std::clamp(wide[i] - narrow[i], 0, 12)],
                  range = kRange[std::min<int>(r1[i], 10)];
        r1[i] = static_cast<unsigned char>(band >= 128 ? (range + 180) >> 1 : range >> 1);
    }
    r1 = blurredPlane(r1, w, h, side < 800 ? 6 : 10);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const auto i = static_cast<std::size_t>(y * w + x);
            int v = zellab::kDetailCurve[r1[i]];
            if (v < 200) v = (v - mask[i] + 255) >> 1;
            r1[i] = std::min(v + bias, 255) < 128 ? 255 : 0;
            const bool inFace =
                !face || (x >= face->left && x < face->right && y >= face->top && y < face->bottom);
            if (!inFace && r1[i] == 255) r1[i] = 116;
        }
    recursiveGaussian(r1, w, h, w, side < 800 ? 2.8f : 4.0f, side < 800 ? 2.8f : 4.0f);
    return r1;
}

inline Bytes strongEdges(const Bytes& grey, int w, int h) {
    Bytes sorted = grey, level;
    std::sort(sorted.begin(), sorted.end());
    for (const unsigned char g : grey) {
        const auto upTo = std::upper_bound(sorted.begin(), sorted.end(), g) - sorted.begin();
        level.push_back(static_cast<unsigned char>(
            static_cast<float>(upTo) * 255.0f / static_cast<float>(grey.size()) + 0.5f));
    }
    Bytes edges(grey.size(), 0);
    for (int y = 1; y < h - 1; ++y)
        for (int x = 1; x < w - 1; ++x) {
            const auto [gx, gy] = sobel(level, w, x, y);
            if (gx * gx + gy * gy >= 900) edges[static_cast<std::size_t>(y * w + x)] = 255;
        }
    return edges;
}

/// What stands out of the light, and how much the places in its shadow on the skin are to be lifted.
inline std::array<Bytes, 2> highPassAndShadow(const Bytes& light, const Bytes& mask, int w, int h,
                                              int radius) {
    const Bytes base = blurredPlane(light, w, h, radius);
    Bytes highPass, shadow;
    for (std::size_t i = 0; i < light.size(); ++i) {
        highPass.push_back(toByte(light[i] - base[i] + 128));
        shadow.push_back(static_cast<unsigned char>(zellab::kShadowWeight[highPass[i]] * mask[i] / 255));
    }
    return {highPass, shadow};
}

/// Repairs the spots on the skin and tells where they were.
inline Bytes repairSpots(Bytes& rgba, int w, int h, const Bytes& skin, const zellab::FaceData* face) {
    zellab::SpotBox box;
    if (face) box = {face->left, face->top, face->right - face->left, face->bottom - face->top};
    Bytes spots(skin.size());
    zellab::CSpotRepair::Run({rgba.data(), w, h}, {skin.data(), w, h}, {.face = box}, {spots.data(), w, h});
    return spots;
}

/// Takes the repaired spots of a small copy over into the picture.
inline void pasteSpots(Bytes& rgba, int w, int h, const Bytes& small, int sw, int sh, const Bytes& spots) {
    const Bytes where = scaleBilinear(blurredPlane(spots, sw, sh, 2), sw, sh, w, h, 1);
    const Bytes large = scaleBilinear(small, sw, sh, w, h, 4);
    for (std::size_t i = 0; i < rgba.size(); ++i)
        if (i % 4 < 3 && where[i / 4] != 0) rgba[i] = large[i];
}

inline void lazyBeauty(LazyPicture& picture, const LazySettings& set, const zellab::OverlayTable& overlay,
                       const zellab::FaceData* fullFace) {
    const int w = picture.width, h = picture.height;
    Bytes& rgba = picture.rgba;
    if (set.autoLevels) autoLevels(rgba);
    const bool direct = w < 481 && h < 641;
    int sw = w, sh = h;
    zellab::FaceData small;
    const zellab::FaceData* face = fullFace;
    if (!direct) {
        const float fw = w / 480.0f, fh = h / 640.0f, scale = 1.0f / std::max(fw, fh);
        sw = fw > fh ? 480 : static_cast<int>(w * scale + 0.5f);
        sh = fw > fh ? static_cast<int>(h * scale + 0.5f) : 640;
        if (face) {
            small = *face;
            for (int* side : {&small.top, &small.bottom, &small.left, &small.right})
                *side = static_cast<int>(*side * scale);
            for (auto& p : small.points) p = {std::trunc(p.x * scale), std::trunc(p.y * scale)};
            face = &small;
        }
    }
    Bytes work = picture.scaled(sw, sh);
    const std::array<int, 3> mean = meanSkin(work, sw, sh, face);
    const Bytes mask = set.seesSkin ? redBlueMask(work, sw, sh, mean) : Bytes(work.size() / 4, 0);
    if (set.repairSpots) {
        Bytes search = mask;
        if (face && !direct) zellab::CFeatureMaskPainter::Paint({search.data(), sw, sh}, face->points, 15, 0);
        const Bytes spots = repairSpots(work, sw, sh, search, face);
        if (direct)
            rgba = work;
        else
            pasteSpots(rgba, w, h, work, sw, sh, spots);
    }
    Bytes light;
    for (std::size_t i = 0; i < work.size(); i += 4)
        light.push_back(overlay(work[i + 1], work[direct ? i + 2 : i + 1]));
    auto [highPass, shadow] = highPassAndShadow(light, mask, sw, sh, 20);
    if (!direct) shadow = scaleBilinear(shadow, sw, sh, w, h, 1);
    const int brightness = static_cast<unsigned char>(
        lazyLuma(static_cast<float>(mean[0]), static_cast<float>(mean[1]), static_cast<float>(mean[2])));
    zellab::ByteTable curve;
    zellab::ApplyCurveThreePoints(curve, 128,
                                  brightness < 61     ? 156
                                  : brightness < 101  ? 152
                                  : brightness <= 140 ? 150
                                  : brightness <= 200 ? 148
                                                      : 145);
    const float s = static_cast<float>(set.smooth) / 7.0f;
    for (std::size_t i = 0; i < rgba.size(); ++i) {
        if (i % 4 == 3) continue;
        const int c = rgba[i], weight = shadow[i / 4];
        rgba[i] = static_cast<unsigned char>(
            (static_cast<float>(curve[c] * weight + c * (255 - weight)) * s) / 255.0f +
            static_cast<float>(c) * (1.0f - s));
    }

    work = picture.scaled(sw, sh);
    Bytes grey;
    for (std::size_t i = 0; i < work.size(); i += 4)
        grey.push_back(
            static_cast<unsigned char>((306 * work[i] + 601 * work[i + 1] + 117 * work[i + 2]) >> 10));
    recursiveGaussian(work, sw, sh, sw * 4, 1.5f, 1.5f);
    const Bytes weight = smoothWeight(grey, mask, sw, sh, face, direct ? 36 : 42);
    Bytes edges = strongEdges(grey, sw, sh);
    recursiveGaussian(edges, sw, sh, sw, direct ? 1.2f : 1.4f, direct ? 1.2f : 1.4f);
    highPass = blurredPlane(highPass, sw, sh, 10);

    const float k = static_cast<float>(std::min(set.overlay, 10)) / 10.0f;
    float t[256] = {0.0f};
    for (int i = 1; i < 256; ++i) t[i] = t[i - 1] + k;
    const float stepX = static_cast<float>(sw) / static_cast<float>(w),
                stepY = static_cast<float>(sh) / static_cast<float>(h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const float px = static_cast<float>(x) * stepX, py = static_cast<float>(y) * stepY;
            const int mix = between(weight, sw, sh, 1, 0, px, py),
                      edge = between(edges, sw, sh, 1, 0, px, py);
            const int blend = between(highPass, sw, sh, 1, 0, px, py);
            for (int c = 0; c < 3; ++c) {
                unsigned char& p = rgba[static_cast<std::size_t>((y * w + x) * 4 + c)];
                const int a = ((between(work, sw, sh, 4, c, px, py) * mix + p * (255 - mix)) >> 8) & 255;
                const int b = ((a * (255 - edge) + p * edge) >> 8) & 255;
                const int o = overlay(b, blend);
                p = static_cast<unsigned char>(static_cast<float>(b) - t[b] + t[o]);
            }
        }
    unsharpMask(rgba, w, h, w * 4, direct ? 16 : 26, 4.0f, 0);
}

}  // namespace slow
