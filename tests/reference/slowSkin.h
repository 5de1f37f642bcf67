#pragma once

#include <libyuv/convert_argb.h>
#include <libyuv/convert_from_argb.h>

#include "beautykernel/facebeauty/facebeauty.h"
#include "beautykernel/facebeauty/finishTable.h"
#include "reference/slowColour.h"
#include "reference/slowLazyBeauty.h"
#include "reference/slowSmooth.h"
#include "zellab/imageproc/colour/selectiveColor.h"

/// The retouch and the whitening, every step written out on whole pictures.

namespace slow {

inline Bytes resized(const Bytes& in, int w, int h, int targetW, int targetH, int channels) {
    if (w == targetW && h == targetH) return in;
    return filterResize(in, w, h, targetW, targetH, channels, twoTaps);
}

inline Table middleCurve(int x, int y) {
    Table table{};
    curveTable({{0, 0}, {x, y}, {255, 255}}, table);
    return table;
}

/// The planes and means that both roads start from.
struct RetouchPlanes {
    std::array<int, 3> mean;
    Bytes mask, highPass, shadow;
    int brightness() const {
        return static_cast<int>(
            lazyLuma(static_cast<float>(mean[0]), static_cast<float>(mean[1]), static_cast<float>(mean[2])));
    }
    RetouchPlanes(const Bytes& rgba, int w, int h, const zellab::FaceData* face)
        : mean(meanSkin(rgba, w, h, face)), mask(redBlueMask(rgba, w, h, mean, {7, 9, 12})) {}
    void addShadows(const Bytes& rgba, int w, int h, const zellab::OverlayTable& overlay) {
        Bytes light;
        for (std::size_t i = 0; i < rgba.size(); i += 4) light.push_back(overlay(rgba[i + 1], rgba[i + 2]));
        const auto both = highPassAndShadow(light, mask, w, h, 16);
        highPass = both[0], shadow = both[1];
    }
};

inline void smoothLuma(Bytes& rgba, int w, int h, const Bytes& skin, const zellab::FaceBeautyParams& set) {
    Bytes y(skin.size()), u = y, v = y;
    libyuv::ARGBToI444(rgba.data(), w * 4, y.data(), w, u.data(), w, v.data(), w, w, h);
    Table levelled{};
    for (int i = 0; i < 256; ++i) levelled[static_cast<std::size_t>(i)] = static_cast<unsigned char>(i);
    if (set.levels) levelled = levels(*set.levels);
    const Bytes d = blurredPlane(y, w, h, 16);
    const float k = set.smoothStrength / 255.0f;
    for (std::size_t i = 0; i < y.size(); ++i) {
        const float difference = static_cast<float>(y[i] - d[i]) * 0.02745f;
        const auto e =
            static_cast<float>(static_cast<int>(std::min(difference * difference * 255.0f, 255.0f)));
        const float a = std::clamp(static_cast<float>(d[i]) / 63.75f - 1.0f, 0.0f, 1.0f);
        y[i] = static_cast<unsigned char>((1.0f - e / (e + 51.0f)) * static_cast<float>(levelled[skin[i]]) *
                                              a * static_cast<float>(d[i] - y[i]) * k +
                                          static_cast<float>(y[i]));
    }
    if (set.edgeFilter) domainTransform(y, w, h, 1, 14.0f, 40.0f, 2);
    Bytes sharp = y;
    unsharpMask(sharp, w, h, w, 15, 3.0f, 0);
    for (std::size_t i = 0; i < y.size(); ++i)
        y[i] = static_cast<unsigned char>(static_cast<float>((sharp[i] - y[i]) * skin[i]) / 255.0f +
                                          static_cast<float>(y[i]));
    libyuv::I444ToARGB(y.data(), w, u.data(), w, v.data(), w, rgba.data(), w * 4, w, h);
}

/// Texels of the three looks.
struct StyleCubes {
    Bytes portrait, faint, airy;
};

/// A picture with a side above 640.
inline void largeFaceBeauty(LazyPicture& picture, const zellab::FaceBeautyParams& set, const Bytes& userMask,
                            int maskWidth, int maskHeight, const zellab::OverlayTable& overlay,
                            const StyleCubes& cubes, const zellab::FaceData* fullFace) {
    const int w = picture.width, h = picture.height;
    Bytes& rgba = picture.rgba;
    const float fw = static_cast<float>(w) / 640.0f, fh = static_cast<float>(h) / 640.0f;
    const float scale = fw > fh ? 1.0f / fw : 1.0f / fh;
    const int sw = fw > fh ? 640 : std::max(static_cast<int>(static_cast<float>(w) * scale), 1);
    const int sh = fw > fh ? std::max(static_cast<int>(static_cast<float>(h) * scale), 1) : 640;
    zellab::FaceData small;
    if (fullFace) {
        small = *fullFace;
        small.left = std::clamp(static_cast<int>(static_cast<float>(small.left) * scale), 0, sw);
        small.right = std::clamp(static_cast<int>(static_cast<float>(small.right) * scale), 0, sw);
        small.top = std::clamp(static_cast<int>(static_cast<float>(small.top) * scale), 0, sh);
        small.bottom = std::clamp(static_cast<int>(static_cast<float>(small.bottom) * scale), 0, sh);
    }
    Bytes work = resized(rgba, w, h, sw, sh, 4);
    RetouchPlanes planes(work, sw, sh, fullFace ? &small : nullptr);
    if (set.repairSpots)
        pasteSpots(rgba, w, h, work, sw, sh,
                   repairSpots(work, sw, sh, planes.mask, fullFace ? &small : nullptr));
    planes.addShadows(work, sw, sh, overlay);
    const int y = planes.brightness();
    const Table curve = middleCurve(128, y < 61    ? 156
                                         : y < 101 ? 148
                                         : y < 121 ? 146
                                         : y < 141 ? 144
                                         : y > 170 ? 140
                                                   : 142);
    const Bytes shadow = resized(planes.shadow, sw, sh, w, h, 1);
    for (std::size_t i = 0; i < rgba.size(); ++i)
        if (i % 4 != 3)
            rgba[i] = static_cast<unsigned char>(rgba[i] +
                                                 ((curve[rgba[i]] - rgba[i]) * shadow[i / 4] + 127) / 255);
    Bytes mask = userMask.empty() ? planes.mask : resized(userMask, maskWidth, maskHeight, sw, sh, 1);
    const int side = std::min(sw, sh);
    mask = blurredPlane(mask, sw, sh, side < 200 ? 12 : side < 500 ? 20 : 30);
    smoothLuma(rgba, w, h, resized(mask, sw, sh, w, h, 1), set);
    const Bytes before = rgba;
    if (set.alternateFinish || set.toneStrength <= 0.01f) {
        colorCube(rgba, set.alternateFinish ? cubes.airy : cubes.faint, 16);
    } else {
        colorCube(rgba, cubes.portrait, 16);
        if (set.toneStrength <= 0.99f) mixByAlpha(rgba, before, Bytes(rgba), set.toneStrength);
    }
}

inline void correctSkinColour(Bytes& rgba, const Bytes& mask, const std::array<int, 3>& mean) {
    const auto [r0, g0, b0] = mean;
    int k = std::min(r0 - std::max(g0, b0) - 50, 10);
    if (r0 - g0 > 12 && b0 < r0) k = static_cast<int>(k * 0.75);
    const int shift = -(k / 5);
    for (std::size_t i = 0; i < rgba.size(); i += 4) {
        const int m = mask[i / 4];
        if (m == 0) continue;
        std::array<int, 3> sorted = {rgba[i], rgba[i + 1], rgba[i + 2]};
        std::sort(sorted.begin(), sorted.end());
        int sums[3] = {0, 0, 0};
        selectiveReds(&rgba[i], sorted[0], sorted[1], sorted[2], sums, k, shift, shift);
        selectiveYellows(&rgba[i], sorted[0], sorted[1], sorted[2], sums, k, shift, -(k / 2));
        for (std::size_t c = 0; c < 3; ++c)
            rgba[i + c] = static_cast<unsigned char>(
                ((255 - m) * rgba[i + c] + toByte(rgba[i + c] - sums[c]) * m + 128) >> 8);
    }
}

/// A picture of up to 640 pixels a side.
inline void smallFaceBeauty(LazyPicture& picture, const zellab::FaceBeautyParams& set,
                            const zellab::OverlayTable& overlay, const zellab::FaceData* face) {
    const int w = picture.width, h = picture.height;
    Bytes& rgba = picture.rgba;
    RetouchPlanes planes(rgba, w, h, face);
    if (set.repairSpots) repairSpots(rgba, w, h, planes.mask, face);
    planes.addShadows(rgba, w, h, overlay);
    const int y = planes.brightness();
    const Table curve = middleCurve(128, y < 61 ? 156 : y < 101 ? 152 : y < 141 ? 150 : y > 200 ? 145 : 148);
    for (std::size_t i = 0; i < rgba.size(); ++i)
        if (i % 4 != 3)
            rgba[i] =
                static_cast<unsigned char>(rgba[i] + (curve[rgba[i]] - rgba[i]) * planes.shadow[i / 4] / 255);
    Bytes smooth = rgba;
    domainTransform(smooth, w, h, 4, 16.0f, 50.0f, 3);
    for (std::size_t i = 0; i < rgba.size(); ++i) {
        const int m = planes.mask[i / 4];
        if (i % 4 != 3) rgba[i] = static_cast<unsigned char>((smooth[i] * m + rgba[i] * (255 - m)) >> 8);
    }
    const Bytes detail = blurredPlane(planes.highPass, w, h, std::min(w, h) > 599 ? 12 : 8);
    float t[256] = {0.0f};
    for (int i = 1; i < 256; ++i) t[i] = t[i - 1] + 0.34f;
    for (std::size_t i = 0; i < rgba.size(); ++i)
        if (i % 4 != 3 && planes.mask[i / 4] > 100)
            rgba[i] = static_cast<unsigned char>(static_cast<float>(rgba[i]) - t[rgba[i]] +
                                                 t[overlay(rgba[i], detail[i / 4])]);
    unsharpMask(rgba, w, h, w * 4, 16, 4.0f, 0);
    if (!set.alternateFinish) return;
    correctSkinColour(rgba, planes.mask, planes.mean);
    eachColour(rgba, [](unsigned char v, std::size_t) { return zellab::kFinishTable[v]; });
}

inline void faceBeauty(LazyPicture& picture, const zellab::FaceBeautyParams& set, const Bytes& userMask,
                       int maskWidth, int maskHeight, const zellab::OverlayTable& overlay,
                       const StyleCubes& cubes, const zellab::FaceData* face) {
    if (set.autoLevels) autoLevels(picture.rgba);
    if (picture.width < 641 && picture.height < 641)
        smallFaceBeauty(picture, set, overlay, face);
    else
        largeFaceBeauty(picture, set, userMask, maskWidth, maskHeight, overlay, cubes, face);
}

inline void mixByMask(Bytes& rgba, const Bytes& before, const Bytes& mask) {
    for (std::size_t i = 0; i < rgba.size(); ++i) {
        const float w = static_cast<float>(mask[i / 4]) * 0.003921569f;
        if (i % 4 != 3)
            rgba[i] = static_cast<unsigned char>(static_cast<float>(before[i]) * (1.0f - w) +
                                                 static_cast<float>(rgba[i]) * w);
    }
}

/// The whole-picture operation; `tone` maps the pixels in the end.
template <typename ToneStep>
void skin(Bytes& rgba, int w, int h, float radius, float mix, float level, const ToneStep& tone) {
    if (static_cast<int>(radius) > 0) {
        const int a = static_cast<int>(mix / 10.0f * 256.0f), b = 256 - a;
        const Table curve = middleCurve(130, static_cast<int>(level) * 5 + 137);
        Bytes mask;
        for (std::size_t i = 0; i < rgba.size(); i += 4) {
            const int p = redBlue(rgba[i], rgba[i + 2]);
            mask.push_back(static_cast<unsigned char>(p > 100 ? p : 0));
        }
        const Bytes copy = rgba;
        surfaceBlur(rgba, w, h, static_cast<int>(radius), 10, mask);
        for (std::size_t i = 0; i < rgba.size(); ++i) {
            if (i % 4 == 3) continue;
            const int m = mask[i / 4], t = m + 1;
            const int c = m == 0 ? copy[i] : (copy[i] * (256 - t) + rgba[i] * t) >> 8;
            rgba[i] = curve[static_cast<std::size_t>((copy[i] * b + c * a) >> 8)];
        }
    }
    tone(rgba);
}

}  // namespace slow
