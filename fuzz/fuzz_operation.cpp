// One exported operation of the C++ library, chosen as choices.h tells, with hostile numbers, landmarks, masks and
// rectangles on a small picture. Nothing beside a buffer may be touched, alpha stays, a call that lacks something
// leaves the picture, and the bytes are the same on one plain worker and on several fast ones.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "choices.h"
#include "frame/processorCount.h"
#include "pixels.h"
#include "platform/simdLevel.h"
#include "readAll.h"
#include "support/guardedBytes.h"
#include "support/operations.h"

namespace {

using zelfuzz::Choices;
using namespace zeltest;

constexpr int kLongSide = 49;  // from here on rows are split over workers

int sideOf(Choices& choices) {
    const int byte = static_cast<int>(choices.byte());
    return byte < 240 ? 1 + byte % (kLongSide - 1) : kLongSide + 4 * (byte - 240);
}

/// Mostly a number that a host would give.
float numberOf(Choices& choices) {
    const unsigned kind = choices.byte();
    if (kind >= 224) return choices.any();
    const auto byte = static_cast<float>(choices.byte());
    return kind < 160 ? byte / 64 - 1 : byte - 27;
}

int wholeOf(Choices& choices) {
    const unsigned kind = choices.byte();
    if (kind < 224)
        return static_cast<int>(choices.byte()) % (kind < 112 ? 12 : 256) - (kind < 112 ? 2 : 100);
    std::uint32_t bits = 0;
    for (int i = 0; i < 4; ++i) bits = bits << 8 | choices.byte();
    return static_cast<int>(bits);
}

Bytes pixelsOf(Choices& choices, int width, int height) {
    const unsigned kind = choices.byte() % 4;
    if (kind < 2) return zelfuzz::faceOf(width, height);
    Bytes bytes(4 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    unsigned value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(kind == 2 ? i * 37 + i / 64 : (value += choices.byte()));
    return bytes;
}

Bytes planeOf(Choices& choices, std::size_t count) {
    const unsigned kind = choices.byte() % 5, value = choices.byte();
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) {
        const bool marked[] = {true, i % (value + 2) < 3, i > count / 2, i == value % count, false};
        bytes[i] = marked[kind] ? static_cast<unsigned char>(kind == 1 ? 255 - i % 7 * 40 : value | 1) : 0;
    }
    return bytes;
}

/// The landmarks of the standard face, some of them elsewhere.
void addFace(zellab::CInterFacePoint& points, ImageCoreFace& face, Choices& choices, int width, int height) {
    const unsigned kind = choices.byte() % 4;
    zellab::Vector2f landmarks[83];
    for (std::size_t i = 0; i < 83; ++i) {
        const zellab::Vector2f at = zellab::kTemplateLandmarks[i];
        const bool moved = kind == 3 || (kind > 0 && choices.byte() % 16 == 15);
        float* const to = face.points[i];
        to[0] = moved ? numberOf(choices) : at.x;
        to[1] = moved ? numberOf(choices) : at.y;
        landmarks[i] = {to[0] * static_cast<float>(width), to[1] * static_cast<float>(height)};
    }
    for (float& side : face.rect) side = kind > 1 ? numberOf(choices) : 0.4f;
    points.AddFace(landmarks, 0);
}

void expect(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    static const bool kAssetsAreSet = !setenv("ZEL_ASSETS", ZEL_FUZZ_ASSETS, 1);
    expect(kAssetsAreSet);
    Choices choices(input, size);
    const auto nameAt = [](std::size_t i) { return kOperations[i].name; };
    const Operation& operation = kOperations[zelfuzz::chosenOf(std::size(kOperations), choices, nameAt)];

    const int width = sideOf(choices), height = sideOf(choices);
    const unsigned missing = choices.byte() % 4 == 3 ? choices.byte() : 0;
    const bool isPlain = choices.byte() & 1, isCompared = choices.byte() % 4 == 3;
    const Bytes picture = pixelsOf(choices, width, height), other = pixelsOf(choices, width, height);
    const Bytes marks = planeOf(choices, picture.size() / 4), table = pixelsOf(choices, 64, 64);
    float given[10];
    for (float& number : given) number = isPlain ? 0 : numberOf(choices);
    const float strength = numberOf(choices);
    if (std::isnan(strength)) std::fill_n(given, 10, strength);
    const int number = wholeOf(choices), otherNumber = wholeOf(choices), index = wholeOf(choices);
    CGRect rect{0.1f * static_cast<float>(width), 0.1f * static_cast<float>(height),
                0.8f * static_cast<float>(width), 0.8f * static_cast<float>(height)};
    if (choices.byte() & 1)
        for (float* side : {&rect.x, &rect.y, &rect.width, &rect.height}) *side = numberOf(choices) * 10;
    struct {
        ImageCoreFaceInfo head{};
        ImageCoreFace face{};
    } record;
    zellab::CInterFacePoint points;
    addFace(points, record.face, choices, width, height);
    const int counts[] = {1, 1, 1, 1, 0, 3, -5};
    points.SetFaceCount(counts[choices.of(std::size(counts))]);
    record.head.faceCount = std::min(points.GetFaceCount(), 1);  // the record is taken at its word
    const auto side =
        choices.byte() & 1 ? GuardedBytes::Against::pageBehind : GuardedBytes::Against::pageBefore;

    const auto run = [&] {
        GuardedBytes image(picture.size(), side), second(picture.size(), side), cover(picture.size(), side),
            mask(marks.size(), side), lookup(table.size(), side);
        for (const auto& [buffer, bytes] : {std::pair(&image, &picture),
                                            {&second, &other},
                                            {&cover, &other},
                                            {&mask, &marks},
                                            {&lookup, &table}})
            std::copy(bytes->begin(), bytes->end(), buffer->data());
        DefocusCore::ZelDepthDefocusRender render;
        render.DrawOnProcessor(true);
        render.SetDepthPlane(mask.data(), width, height);
        if (!std::strcmp(operation.name, "DepthEstimate")) {
            render.setResourcePath(ZEL_FUZZ_ASSETS "/depth", ZEL_FUZZ_ASSETS "/bokeh");
            render.Init(false);
        }
        const auto there = [&](unsigned bit, auto* pointer) { return missing & bit ? nullptr : pointer; };
        Call call{image.data(),
                  there(1, second.data()),
                  there(2, cover.data()),
                  there(2, mask.data()),
                  there(4, lookup.data()),
                  width,
                  height,
                  !(missing & 8),
                  strength,
                  number,
                  otherNumber,
                  index,
                  rect,
                  there(16, &points),
                  there(16, &record.head),
                  &render,
                  0,
                  isPlain ? nullptr : given};
        std::srand(1);
        operation.run(call);
        for (const GuardedBytes* buffer : {&image, &second, &cover, &mask, &lookup})
            expect(buffer->guardsIntact());
        zelfuzz::readAll(image.data(), image.size());
        const bool hasFace = call.points && points.GetFaceCount() >= 1;
        if (operation.lackedBy(call, hasFace))
            expect(std::equal(picture.begin(), picture.end(), image.data()));
        if (operation.keepsAlpha())
            for (std::size_t i = 3; i < picture.size(); i += 4) expect(image[i] == picture[i]);
        return std::pair(Bytes(image.data(), image.data() + image.size()),
                         Bytes(second.data(), second.data() + second.size()));
    };
    if (!isCompared) {
        run();
        return 0;
    }
    const auto on = [&](int workers, zellab::platform::SimdLevel level) {
        const zellab::WorkerCount count(workers);
        const zellab::platform::SimdLimit limit(level);
        return run();
    };
    expect(on(1, zellab::platform::SimdLevel::baseline) == on(3, zellab::platform::SimdLevel::avx2));
    return 0;
}
