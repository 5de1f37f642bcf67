// Learns the landmark fit from drawn portraits and writes its table:
//   trainLandmarks libzel/faces/landmarkTable.inc [KEPT-PICTURES]
// KEPT-PICTURES is a file where the drawn portraits stay for a second run. With two processors drawing takes
// about five minutes and learning as long.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <random>

#include "disguise.h"
#include "proportions.h"
#include "ridge.h"
#include "shapeModes.h"
#include "trainingSet.h"

namespace zeltrain {

namespace {

using zel::aligning;
using zel::kLandmarks;
using zel::kModes;
using zel::landmarkError;
using zel::LandmarkModel;
using zel::Landmarks;
using zel::moved;
using zel::Similarity;

constexpr unsigned kFirstSeed = 100001;  // no test or measurement uses seeds from here on
constexpr std::size_t kPictures = 1400;
constexpr std::size_t kLookings = 6;  // at each picture; every second at its mirror image
constexpr float kRidge = 1.0f, kTrustRidge = 2.0f;

/// How far off the detector's boxes place the face, in pupil distances, shares and radians, with a margin.
constexpr float kShift = 0.16f, kGrowth = 0.13f, kTurn = 0.14f;

/// One looking at a picture: what was done to it, and where the fit stands.
struct Looking {
    std::size_t picture = 0;
    unsigned seed = 0;
    bool mirror = false;
    bool stray = false;  // starts where no face is; teaches the judgement alone
    Landmarks mean{};    // of the drawn people, with the place that it has in the picture
    Similarity exact{};
    Landmarks truth{}, points{};
    std::vector<unsigned char> luma{};  // the picture as developed for this looking
};

float normal(std::mt19937& random) {
    float sum = -6;
    for (int i = 0; i < 12; ++i) sum += static_cast<float>(random()) / 4294967296.0f;
    return sum;
}

/// What a small picture looks like that was made large: read between the samples of a coarse grid.
std::vector<unsigned char> coarsened(const Canvas& canvas, float step) {
    const zel::LumaPyramid sharp(canvas.luma, canvas.width, canvas.height);
    const auto knot = [step](float v) { return (std::floor(v / step) + 0.5f) * step; };
    std::vector<unsigned char> luma;
    luma.reserve(canvas.luma.size());
    for (int y = 0; y < canvas.height; ++y)
        for (int x = 0; x < canvas.width; ++x) {
            const float fx = static_cast<float>(x) + 0.5f, fy = static_cast<float>(y) + 0.5f;
            const float x0 = knot(fx - 0.5f * step), y0 = knot(fy - 0.5f * step);
            const float u = (fx - x0) / step, v = (fy - y0) / step;
            const float top = (1 - u) * sharp.at(0, x0, y0) + u * sharp.at(0, x0 + step, y0);
            const float low = (1 - u) * sharp.at(0, x0, y0 + step) + u * sharp.at(0, x0 + step, y0 + step);
            luma.push_back(static_cast<unsigned char>((1 - v) * top + v * low));
        }
    return luma;
}

/// The picture as another camera would have taken it: mirrored, lit from elsewhere, lighter or darker,
/// smaller, noisier, and with more on the face than the drawn people have.
std::vector<unsigned char> develop(const TrainingPicture& picture, const Looking& looking) {
    std::mt19937 random(looking.seed);
    const float gamma = std::exp(uniform(random, -0.6f, 0.6f));
    const float noise = uniform(random, -6, 8);
    const float lightX = uniform(random, -0.4f, 0.4f), lightY = uniform(random, -0.3f, 0.3f);
    const bool small = uniform(random, 0, 1) < 0.35f;
    const float step = uniform(random, 1.2f, 2.6f);
    std::array<float, 256> tones;
    for (std::size_t i = 0; i < tones.size(); ++i)
        tones[i] = 255 * std::pow(static_cast<float>(i) / 255, gamma);

    Canvas canvas{std::vector<unsigned char>(picture.luma.size()), picture.width, picture.height};
    const auto w = static_cast<std::size_t>(picture.width), h = static_cast<std::size_t>(picture.height);
    const zel::LumaPyramid drawn(picture.luma, picture.width, picture.height);
    const Proportions proportions(looking.mean, looking.exact, looking.seed);
    for (std::size_t y = 0; y < h; ++y)
        for (std::size_t x = 0; x < w; ++x) {
            const float px = static_cast<float>(x) + 0.5f, py = static_cast<float>(y) + 0.5f;
            const auto from = proportions.back({looking.mirror ? static_cast<float>(w) - px : px, py});
            const float light = 1 + lightX * (px / static_cast<float>(w) - 0.5f) +
                                lightY * (py / static_cast<float>(h) - 0.5f);
            const float tone = tones[static_cast<std::size_t>(drawn.at(0, from.x, from.y))];
            canvas.luma[y * w + x] = static_cast<unsigned char>(std::min(255.0f, light * tone));
        }
    disguise(canvas, looking.truth, random);
    if (small) canvas.luma = coarsened(canvas, step);
    if (noise > 0)
        for (auto& v : canvas.luma)
            v = static_cast<unsigned char>(
                std::clamp(static_cast<float>(v) + noise * uniform(random, -1.7f, 1.7f), 0.0f, 255.0f));
    return canvas.luma;
}

zel::LumaPyramid seen(const TrainingPicture& picture, const Looking& looking) {
    return {looking.luma, picture.width, picture.height};
}

Landmarks truthOf(const TrainingPicture& picture, const Looking& looking) {
    const Proportions proportions(looking.mean, looking.exact, looking.seed);
    Landmarks changed;
    for (std::size_t i = 0; i < kLandmarks; ++i) changed[i] = proportions(picture.points[i]);
    if (!looking.mirror) return changed;
    Landmarks truth;
    for (std::size_t i = 0; i < kLandmarks; ++i) {
        const auto& p = changed[zel::mirrorOrder()[i]];
        truth[i] = {static_cast<float>(picture.width) - p.x, p.y};
    }
    return truth;
}

/// Where a box of the detector would have put the mean face.
Landmarks start(const LandmarkModel& model, const TrainingPicture& picture, Looking& looking) {
    std::mt19937 random(looking.seed ^ 0x5bd1e995u);
    const Similarity exact = aligning(model.mean, looking.truth);
    const float unit = exact.scale();
    const float growth =
        std::exp(kGrowth * normal(random) + (looking.stray ? uniform(random, -1, 0.4f) : 0.0f));
    const float turn = looking.stray ? 0.0f : kTurn * normal(random);
    Similarity placed{unit * growth * std::cos(turn), unit * growth * std::sin(turn), 0, 0};
    if (!looking.stray) {  // the detector knows no roll: it is the turn that must be found
        const float keep = uniform(random, 0, 1);
        const float c = exact.a / unit, s = keep * exact.b / unit;
        placed = {placed.a * c - placed.b * s, placed.b * c + placed.a * s, 0, 0};
    }
    const auto middle = exact({0, 0.4f});
    const auto own = placed({0, 0.4f});
    float x = middle.x + unit * kShift * normal(random), y = middle.y + unit * kShift * normal(random);
    if (looking.stray) {
        x = uniform(random, 0, static_cast<float>(picture.width));
        y = uniform(random, 0, static_cast<float>(picture.height));
    }
    placed.shiftX = x - own.x;
    placed.shiftY = y - own.y;
    return moved(model.mean, placed);
}

/// Every looking with its picture developed; the shape of faces is learnt on the way.
std::vector<Looking> plan(LandmarkModel& model, const std::vector<TrainingPicture>& set) {
    std::vector<Landmarks> drawn, varied;
    for (const auto& picture : set) drawn.push_back(picture.points);
    const Landmarks mean = meanShape(drawn);
    std::vector<Looking> lookings;
    for (std::size_t p = 0; p < set.size(); ++p)
        for (std::size_t k = 0; k < kLookings + 2; ++k) {
            Looking looking;
            looking.picture = p;
            looking.seed = static_cast<unsigned>(p * 16 + k);
            looking.mirror = k % 2 == 1;
            looking.stray = k >= kLookings;
            looking.mean = mean;
            looking.exact = aligning(mean, set[p].points);
            looking.truth = truthOf(set[p], looking);
            if (!looking.stray) varied.push_back(looking.truth);
            lookings.push_back(looking);
        }
    learnShape(varied, model);
    forEach(lookings.size(), [&](std::size_t i) {
        Looking& looking = lookings[i];
        looking.points = start(model, set[looking.picture], looking);
        looking.luma = develop(set[looking.picture], looking);
    });
    return lookings;
}

float meanError(const std::vector<Looking>& lookings) {
    double sum = 0;
    std::size_t count = 0;
    for (const Looking& l : lookings)
        if (!l.stray) {
            sum += landmarkError(l.points, l.truth);
            ++count;
        }
    return static_cast<float>(sum / static_cast<double>(count));
}

/// Describes every looking that `use` takes in, and asks `value` what is to be foretold.
template <typename Use, typename Value>
Samples look(const LandmarkModel& model, const std::vector<TrainingPicture>& set,
             const std::vector<Looking>& lookings, const zel::Sight& sight, std::size_t targets,
             const Use& use, const Value& value) {
    std::vector<const Looking*> used;
    for (const Looking& l : lookings)
        if (use(l)) used.push_back(&l);
    Samples samples;
    samples.count = used.size();
    samples.targets = targets;
    samples.descriptors.resize(used.size() * zel::kDescriptorSize);
    samples.values.resize(used.size() * targets);
    forEach(used.size(), [&](std::size_t i) {
        const Looking& l = *used[i];
        const Similarity toPicture = aligning(model.mean, l.points);
        const Landmarks upright = moved(l.points, toPicture.inverse());
        const auto descriptor = describeFace(seen(set[l.picture], l), toPicture, upright, sight);
        std::copy(descriptor.begin(), descriptor.end(),
                  samples.descriptors.data() + i * zel::kDescriptorSize);
        const std::vector<float> values = value(l, toPicture, upright);
        std::copy(values.begin(), values.end(), samples.values.data() + i * targets);
    });
    return samples;
}

void learnStep(LandmarkModel& model, std::size_t step, const std::vector<TrainingPicture>& set,
               std::vector<Looking>& lookings) {
    const auto wayToGo = [&](const Looking& l, const Similarity& toPicture, const Landmarks& upright) {
        auto wanted = modesOf(model, moved(l.truth, toPicture.inverse()));
        const auto have = modesOf(model, upright);
        for (std::size_t m = 0; m < kModes; ++m) wanted[m] -= have[m];
        return wanted;
    };
    const auto facing = [](const Looking& l) { return !l.stray; };
    model.steps.push_back(
        fitRidge(look(model, set, lookings, zel::kSights[step], kModes, facing, wayToGo), kRidge));
    forEach(lookings.size(), [&](std::size_t i) {
        takeStep(model, step, seen(set[lookings[i].picture], lookings[i]), lookings[i].points);
    });
    std::fprintf(stderr, "step %zu: mean error %.4f\n", step, static_cast<double>(meanError(lookings)));
}

void learnTrust(LandmarkModel& model, const std::vector<TrainingPicture>& set,
                const std::vector<Looking>& lookings) {
    constexpr float kWorthless = 0.25f;  // error of a fit without any worth
    const auto worth = [](const Looking& l, const Similarity&, const Landmarks&) {
        return std::vector<float>{std::max(0.0f, 1.0f - landmarkError(l.points, l.truth) / kWorthless)};
    };
    const auto all = [](const Looking& l) { return l.stray || l.seed % 4 < 2; };
    model.trust = fitRidge(look(model, set, lookings, zel::kTrustSight, 1, all, worth), kTrustRidge);
}

LandmarkModel learn(const std::vector<TrainingPicture>& set) {
    LandmarkModel model;
    auto lookings = plan(model, set);
    std::fprintf(stderr, "%zu lookings, mean error of the starts %.4f\n", lookings.size(),
                 static_cast<double>(meanError(lookings)));
    for (std::size_t step = 0; step < std::size(zel::kSights); ++step) learnStep(model, step, set, lookings);
    learnTrust(model, set, lookings);
    return model;
}

}  // namespace

}  // namespace zeltrain

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: trainLandmarks TABLE.inc [KEPT-PICTURES]\n");
        return 2;
    }
    const auto set =
        zeltrain::drawTrainingSet(zeltrain::kFirstSeed, zeltrain::kPictures, argc > 2 ? argv[2] : "");
    const std::string text = zel::encodeModel(zeltrain::learn(set));
    std::ofstream out(argv[1], std::ios::binary);
    out << text;
    out.close();
    return out ? 0 : 1;
}
