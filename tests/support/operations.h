#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <ostream>

#include "zel_effects/zel_effects.h"

/// Every exported operation as a function of one call's arguments, for what has to hold for all of them: tests,
/// fuzzers and the long checks go through this one table.

namespace zeltest {

/// The arguments of one call; an operation takes those that it has a place for.
struct Call {
    unsigned char *image, *second, *cover, *mask, *table;  // cover: a mask of four bytes a pixel
    int width, height;
    bool params;  // false: the block of numbers is null
    float strength;
    int number, otherNumber, faceIndex;
    CGRect rect;
    zellab::CInterFacePoint* points;
    ImageCoreFaceInfo* faceInfo;
    DefocusCore::ZelDepthDefocusRender* render;
    int round;
    const float* given;  // ten numbers that take the place of every operation's own; null: none do

    /// Numbers that make sense but for one, or for all of them: those are the round's strength.
    template <std::size_t N>
    std::array<float, N> spoiled(std::array<float, N> numbers) const {
        if (given) {
            std::copy_n(given, N, numbers.begin());
            return numbers;
        }
        const std::size_t slot = static_cast<std::size_t>(round / 7) % (N + 1);  // 7 strengths
        for (std::size_t i = 0; i < N; ++i)
            if (slot == i || slot == N) numbers[i] = strength;
        return numbers;
    }
};

using ZelImageCore::CScenarioBeauty, ZelImageCore::TableBase, ZelImageCore::TableSkin;

/// What an operation cannot do without: null there, or NaN among the numbers, leaves the picture.
enum Needs : unsigned { kSecond = 1, kMask = 2, kParams = 4, kTable = 8, kFace = 16, kNumbers = 32 };

struct Operation {
    using Act = void (*)(Call&);
    using Ask = bool (*)(Call&);
    Operation(const char* of, Act how, unsigned what = 0, int rounds = 1)
        : name(of), act(how), needs(what), every(rounds) {}
    Operation(const char* of, Ask how, unsigned what = 0, bool bad = false, int rounds = 1)
        : name(of), ask(how), needs(what), badAnswer(bad), every(rounds) {}
    bool run(Call& c) const { return ask ? ask(c) : (act(c), false); }
    /// What the call is without and the operation needs: where anything is, the picture stays.
    unsigned lackedBy(const Call& c, bool hasFace) const {
        return needs &
               ((c.second ? 0u : kSecond) | (c.mask ? 0u : kMask) | (c.params ? 0u : kParams) |
                (c.table ? 0u : kTable) | (hasFace ? 0u : kFace) | (std::isnan(c.strength) ? kNumbers : 0u));
    }
    /// A prepared picture brings its own alpha, and what is drawn anew is opaque.
    bool keepsAlpha() const {
        return std::strcmp(name, "QornSkinWhitening") != 0 && std::strncmp(name, "Defocus", 7) != 0;
    }
    /// What draws on rand() gives other bytes to each of two callers.
    bool drawsOnRand() const { return !std::strcmp(name, "Inpaint") || !std::strncmp(name, "De", 2); }
    friend void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

    const char* name;
    Act act = nullptr;
    Ask ask = nullptr;
    unsigned needs;
    bool badAnswer = false;  // to a null picture or a size below 1
    int every = 1;           // takes part in every so many rounds
};

inline const Operation kOperations[] = {
    {"AlphaMix",
     [](Call& c) {
         const auto p = c.spoiled<6>({0, 0, 0, 0, 3, 1});
         float params[] = {p[0], p[1], static_cast<float>(c.width), static_cast<float>(c.height), p[4], p[5]};
         TableBase::ImageProcessWithAlphaMix(c.image, c.width, c.height, c.second, c.cover,
                                             c.params ? params : nullptr);
     },
     kSecond | kMask | kParams},
    {"ColorMixing",
     [](Call& c) {
         auto p = c.spoiled<4>({20, -30, 40, 5});
         TableBase::ImageProcessWithColorMixing(c.image, c.width, c.height, c.params ? p.data() : nullptr,
                                                c.number);
     },
     kParams},
    {"GaussBlur",
     [](Call& c) { TableBase::ImageProcessWithGaussBlur(c.image, c.width, c.height, c.number); }},
    {"Mosaic", [](Call& c) { TableBase::ImageProcessWithMosaic(c.image, c.width, c.height, c.number); }},
    {"Sharp",
     [](Call& c) {
         TableBase::ImageProcessWithSharp(c.image, c.width, c.height, c.strength,
                                          c.params ? &c.second : nullptr);
     },
     kSecond | kParams | kNumbers},
    {"AutoEyeBright",
     [](Call& c) {
         const auto p = c.spoiled<10>({100, 0, 0, 40, 70, 0, 40, 1, 0.4f, 1});
         TableSkin::ImageProcessWithAutoEyeBright(c.image, c.width, c.height, c.points, c.faceIndex, p[0],
                                                  p[1], p[2], p[3], p[4], p[5], p[6], p[7], p[8], p[9]);
     },
     kFace},
    {"AutoFaceInpaint",
     [](Call& c) {
         TableSkin::ImageProcessWithAutoFaceInpaint(c.image, c.otherNumber & 1 ? nullptr : c.mask, c.width,
                                                    c.height, c.rect, c.points, c.faceIndex, c.number & 3);
     },
     kFace},
    {"AutoRemoveBlackCircle",
     [](Call& c) {
         TableSkin::ImageProcessWithAutoRemoveBlackCircle(c.image, c.width, c.height, c.rect, c.points,
                                                          c.faceIndex, c.strength, c.number & 3);
     },
     kFace},
    {"Bright",
     [](Call& c) {
         return TableSkin::ImageProcessWithBright(c.image, c.width, c.height, c.number, c.otherNumber);
     }},
    {"Inpaint",
     [](Call& c) { TableSkin::ImageProcessWithInpaint(c.image, c.width, c.height, c.mask, c.number); }, kMask,
     10},
    {"QornSkinRetouch",
     [](Call& c) {
         TableSkin::ImageProcessWithQornSkinRetouch(c.image, c.width, c.height, c.strength, c.faceInfo,
                                                    c.mask);
     },
     kNumbers},
    {"QornSkinWhitening",
     [](Call& c) {
         auto p = c.spoiled<2>({5, 0.6f});
         TableSkin::ImageProcessWithQornSkinWhitening(c.image, c.width, c.height,
                                                      c.params ? p.data() : nullptr, c.faceInfo, c.mask,
                                                      c.number & 1 ? c.second : nullptr);
     },
     kParams | kNumbers},
    {"Mascara",
     [](Call& c) {
         TableSkin::ImageProcessWithMascara(c.image, c.width, c.height, c.otherNumber, c.number);
     }},
    {"NatureSmooth",
     [](Call& c) { TableSkin::ImageProcessWithNatureSmooth(c.image, c.width, c.height, c.number); }},
    {"RemoveBlackCircleByMask",
     [](Call& c) {
         TableSkin::ImageProcessWithRemoveBlackCircle(c.image, c.width, c.height, c.mask, nullptr, 1);
     },
     kMask},
    {"RemoveBlackCircleByRectangle",
     [](Call& c) {
         float rect[] = {c.rect.x, c.rect.y, c.rect.width, c.rect.height};
         TableSkin::ImageProcessWithRemoveBlackCircle(c.image, c.width, c.height, nullptr,
                                                      c.params ? rect : nullptr, 0);
     },
     kParams},
    {"Skin",
     [](Call& c) {
         auto p = c.spoiled<4>({static_cast<float>(c.otherNumber), 5, 5, 0.5f});
         TableSkin::ImageProcessWithSkin(c.image, c.width, c.height, c.params ? p.data() : nullptr, nullptr);
     },
     kParams | kNumbers},
    {"SkinColor",
     [](Call& c) {
         const auto p = c.spoiled<2>({0.7f, 5});
         TableSkin::ImageProcessWithSkinColor(c.image, c.width, c.height, p[0], p[1], c.table, c.number,
                                              c.number);
     },
     kTable | kNumbers},
    {"WrinkleCleaner",
     [](Call& c) {
         TableSkin::ImageProcessWithWrinkleCleaner(c.image, c.width, c.height, c.mask, c.otherNumber,
                                                   c.number);
     },
     kMask},
    {"Scenario",
     [](Call& c) {
         return CScenarioBeauty().Run(c.image, c.width, c.height,
                                      static_cast<ZelImageCore::eScenarioType>(c.otherNumber), c.strength,
                                      c.table, c.faceInfo);
     }},
    {"AutoSlimFace",
     [](Call& c) {
         return CFaceSlimRender::autoSlimFace(c.image, c.width, c.height, c.points, c.strength, c.faceIndex);
     },
     kFace, true},
    {"AutoSlimFaceInFull",
     [](Call& c) {
         const auto p = c.spoiled<8>({1, 1, 0.9f, 0.6f, 0.2f, 0.4f, 0.34f, -0.5f});
         return CFaceSlimRender::autoSlimFace(c.image, c.width, c.height, c.points, p[0], p[1], p[2], p[3],
                                              p[4], p[5], p[6], p[7], c.faceIndex);
     },
     kFace, true},
    {"SlimFace",
     [](Call& c) {
         const auto p = c.spoiled<6>({0.4f, 0.5f, 0.6f, 0.5f, 4, 80});
         return CFaceSlimRender::slimFace(c.image, c.width, c.height, p[0], p[1], p[2], p[3], p[4], p[5]);
     }},
    {"AutoZoomEye",
     [](Call& c) {
         return CEyeZoomRender::autoZoomEye(c.image, c.width, c.height, c.points, c.strength, c.faceIndex);
     },
     kFace, true},
    {"AutoZoomEyeInFull",
     [](Call& c) {
         const auto p = c.spoiled<4>({1, 0.9f, 0.2f, 1});
         return CEyeZoomRender::autoZoomEye(c.image, c.width, c.height, c.points, p[0], p[1], p[2], p[3],
                                            c.faceIndex);
     },
     kFace, true},
    {"ZoomEye",
     [](Call& c) {
         const auto p = c.spoiled<3>({0.5f, 0.5f, 4});
         return CEyeZoomRender::zoomEye(c.image, c.width, c.height, {p[0], p[1]}, p[2], c.number);
     }},
    {"MixWidthMask",
     [](Call& c) {
         return c.render->MixWidthMask(c.second, c.image, c.width, c.height, c.cover, c.width, c.height,
                                       c.strength, c.number);
     },
     kSecond | kMask | kNumbers},
    {"DepthEstimate",
     [](Call& c) { return c.render->DepthEstimate(c.image, c.width, c.height, c.mask, c.width, c.height); },
     0, false, 20},
    {"DefocusInto",
     [](Call& c) {
         const auto p = c.spoiled<4>({0.5f, 0.5f, 2, 1});
         float face[] = {c.rect.x, c.rect.y, c.rect.width, c.rect.height};
         c.render->SetBokehImage(c.number & 1 ? "defocus_spin" : nullptr, c.table, 64, 64);
         c.render->SetHairMaskData(c.mask, c.width, c.height);
         return c.render->Run(c.image, c.width, c.height, c.second, c.width, c.height, c.faceIndex > 0, face,
                              p[0], p[1], c.number & 2, c.number, 0, nullptr, false, c.mask != nullptr, true,
                              0, p[2], p[3]);
     },
     0, false, 10},
    {"DefocusInPlace",
     [](Call& c) {
         const auto p = c.spoiled<6>({0.5f, 0.5f, 3, 1, 2, 1});
         c.render->SetBokehImage("", c.table, 64, 64);
         c.render->SetHairMaskData(c.mask, c.width, c.height);
         return c.render->Run(c.image, c.width, c.height, c.faceIndex, nullptr, p[0], p[1], c.number, p[2],
                              c.mask != nullptr, true, p[3], p[4], p[5]);
     },
     kTable, false, 10},
};

}  // namespace zeltest
