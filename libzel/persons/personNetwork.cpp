#include "libzel/persons/personNetwork.h"

#include <algorithm>
#include <cmath>

#include "frame/processorCount.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zel {

namespace {

using zellab::ConstImageView;
using zellab::Plane;

constexpr int kSide = 256;  // samples of a look
constexpr std::size_t kSamples = std::size_t{kSide} * kSide;

constexpr NetworkOutput kOutputs[] = {{"activation_10_249", kSamples}};
const NetworkKind kKind{"personMask.onnx", {1, 3, kSide, kSide}, kOutputs};

constexpr float kWholeWeight = 1, kCloserWeight = 4;
constexpr float kBorder = 32;  // samples over which a closer look's weight rises from its border

/// A rectangle of the picture in its pixels.
struct Part {
    int left, top, width, height;
};

/// What the network says of a part, row by row.
std::vector<float> sharesOf(Network& network, ConstImageView picture, const Part& part) {
    zellab::RgbaImage samples(kSide, kSide);
    if (!scaleArgb(picture.crop(part.left, part.top, part.width, part.height), samples.view(),
                   zellab::YuvFilter::box))
        throw NetworkFailure("the picture is too long for a look at its persons");
    std::vector<float> input(3 * kSamples);
    for (std::size_t i = 0; i < kSamples; ++i)
        for (std::size_t c = 0; c < 3; ++c)
            input[c * kSamples + i] = static_cast<float>(samples.data()[4 * i + c]) / 255;
    std::vector<float> shares = std::move(network.run(input)[0]);
    for (float& share : shares) share = share >= 0 ? std::min(share, 1.0f) : 0;  // a NaN is nobody
    return shares;
}

/// Where a pixel of the part lies between the samples of a look, along one side.
struct Between {
    int first, second;
    float share;   // of the second
    float border;  // samples to the nearer end

    Between(int pixel, int length) {
        const float place = (static_cast<float>(pixel) + 0.5f) * kSide / static_cast<float>(length);
        const float sample = std::clamp(place - 0.5f, 0.0f, kSide - 1.0f);
        first = static_cast<int>(sample);
        second = std::min(first + 1, kSide - 1);
        share = sample - static_cast<float>(first);
        border = std::min(place, kSide - place);
    }
};

/// A look at one part: what was seen, and how far it is believed.
struct Look {
    Part part;
    std::vector<float> shares;
    bool whole;

    float weight(float border) const {
        return whole ? kWholeWeight : kCloserWeight * std::clamp(border / kBorder, 0.0f, 1.0f);
    }

    /// Adds row y of the picture.
    void addRow(int y, const std::vector<Between>& across, float* sum, float* weights) const {
        if (y < part.top || y >= part.top + part.height) return;
        const Between down(y - part.top, part.height);
        const float* const above = shares.data() + std::ptrdiff_t{kSide} * down.first;
        const float* const below = shares.data() + std::ptrdiff_t{kSide} * down.second;
        for (int x = 0; x < part.width; ++x) {
            const Between& at = across[static_cast<std::size_t>(x)];
            const float upper = std::lerp(above[at.first], above[at.second], at.share);
            const float lower = std::lerp(below[at.first], below[at.second], at.share);
            const float w = weight(std::min(at.border, down.border));
            sum[part.left + x] += w * std::lerp(upper, lower, down.share);
            weights[part.left + x] += w;
        }
    }
};

Part partOf(const TurnedSquare& square, ConstImageView picture) {
    const auto whole = [](float x) { return static_cast<int>(std::lround(x)); };
    const int side = std::clamp(whole(square.side), 1, std::min(picture.width, picture.height));
    return {std::clamp(whole(square.centre.x - 0.5f * square.side), 0, picture.width - side),
            std::clamp(whole(square.centre.y - 0.5f * square.side), 0, picture.height - side), side, side};
}

}  // namespace

std::optional<PersonNetwork> PersonNetwork::load(const std::string& folder, std::string& reason) {
    PersonNetwork persons;
    persons.m_network = Network::load(folder, kKind, reason);
    if (!persons.m_network) return std::nullopt;
    return persons;
}

Plane<float> PersonNetwork::look(ConstImageView picture, const std::vector<TurnedSquare>& closer) const {
    std::vector<Look> looks{{{0, 0, picture.width, picture.height}, {}, true}};
    for (const TurnedSquare& square : closer) looks.push_back({partOf(square, picture), {}, false});
    zellab::runTasks(static_cast<int>(looks.size()), zellab::ProcessorCount(), [&](int i) {
        Look& look = looks[static_cast<std::size_t>(i)];
        look.shares = sharesOf(*m_network, picture, look.part);
    });

    std::vector<std::vector<Between>> across(looks.size());
    for (std::size_t i = 0; i < looks.size(); ++i)
        for (int x = 0; x < looks[i].part.width; ++x) across[i].emplace_back(x, looks[i].part.width);
    Plane<float> shares(picture.width, picture.height);
    zellab::parallelRows(picture.height, [&](int begin, int end) {
        std::vector<float> weights(static_cast<std::size_t>(picture.width));
        for (int y = begin; y < end; ++y) {
            float* const row = shares.row(y);
            std::fill(weights.begin(), weights.end(), 0.0f);
            for (std::size_t i = 0; i < looks.size(); ++i) looks[i].addRow(y, across[i], row, weights.data());
            for (std::size_t x = 0; x < weights.size(); ++x) row[x] /= weights[x];
        }
    });
    return shares;
}

}  // namespace zel
