#include "trainingSet.h"

#include <atomic>
#include <cstdio>
#include <fstream>
#include <thread>

#include "libzel/faces/lumaPyramid.h"
#include "variedPortrait.h"

namespace zeltrain {

namespace {

constexpr int kLongSide = 320;  // pixels: pupils 35 to 65 pixels apart

TrainingPicture drawOne(unsigned seed) {
    const zel::Portrait portrait = zel::drawPortrait(variedPortrait(seed, kLongSide));
    TrainingPicture picture;
    picture.width = portrait.image.width;
    picture.height = portrait.image.height;
    picture.luma = zel::lumaOf(portrait.image);
    for (std::size_t i = 0; i < picture.points.size(); ++i) {
        const auto& share = portrait.faces.faces[0].points[i];
        picture.points[i] = {share.x * static_cast<float>(picture.width),
                             share.y * static_cast<float>(picture.height)};
    }
    return picture;
}

template <typename T>
void readRaw(std::istream& in, T& value) {
    in.read(reinterpret_cast<char*>(&value), sizeof value);
}

template <typename T>
void writeRaw(std::ostream& out, const T& value) {
    out.write(reinterpret_cast<const char*>(&value), sizeof value);
}

std::vector<TrainingPicture> readKept(const std::string& path, std::size_t count) {
    std::ifstream in(path, std::ios::binary);
    std::vector<TrainingPicture> set;
    while (in && set.size() < count) {
        TrainingPicture picture;
        readRaw(in, picture.width);
        readRaw(in, picture.height);
        readRaw(in, picture.points);
        if (!in) break;
        picture.luma.resize(static_cast<std::size_t>(picture.width) * picture.height);
        in.read(reinterpret_cast<char*>(picture.luma.data()), static_cast<long>(picture.luma.size()));
        if (in) set.push_back(std::move(picture));
    }
    return set;
}

void keep(const std::string& path, const std::vector<TrainingPicture>& set) {
    std::ofstream out(path, std::ios::binary);
    for (const TrainingPicture& picture : set) {
        writeRaw(out, picture.width);
        writeRaw(out, picture.height);
        writeRaw(out, picture.points);
        out.write(reinterpret_cast<const char*>(picture.luma.data()), static_cast<long>(picture.luma.size()));
    }
}

}  // namespace

std::vector<TrainingPicture> drawTrainingSet(unsigned firstSeed, std::size_t count,
                                             const std::string& keptAs) {
    if (!keptAs.empty()) {
        auto kept = readKept(keptAs, count);
        if (kept.size() == count) return kept;
    }
    std::vector<TrainingPicture> set(count);
    std::atomic<std::size_t> next{0};
    const auto drawSome = [&] {
        for (std::size_t i; (i = next++) < count;) {
            set[i] = drawOne(firstSeed + static_cast<unsigned>(i));
            if (i % 100 == 0) std::fprintf(stderr, "drawn %zu of %zu\n", i, count);
        }
    };
    std::thread helper(drawSome);
    drawSome();
    helper.join();
    if (!keptAs.empty()) keep(keptAs, set);
    return set;
}

}  // namespace zeltrain
