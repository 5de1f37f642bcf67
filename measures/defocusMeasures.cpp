// Depth of field against a lens worked out from the true layers, on drawn portraits whose true depth is
// given. Prints the table of docs/measures.md. Usage: zel_defocus_measures ASSETS [WIDTH HEIGHT PORTRAITS
// [OUT]] With OUT, a folder, the pictures of each portrait are left there as PPM files.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "defocusTruth.h"
#include "zel_effects/offscreenContext.h"
#include "zel_effects/zel_effects.h"

namespace {

using namespace zelmeasures;

constexpr int kLevel = 60;
constexpr int kBand = 40;       // pixels on either side of the outline
constexpr double kVisible = 6;  // levels; a mean error above this at some distance counts as halo

double luma(const Rgba& rgba, std::size_t pixel) {
    const unsigned char* p = &rgba[4 * pixel];
    return 0.299 * p[0] + 0.587 * p[1] + 0.114 * p[2];
}

/// The effect with the true depth, looks neutral, so that light adds up as in the reference.
Rgba render(const std::string& assets, const LayeredPortrait& layers, bool withHair) {
    const zel::Portrait& portrait = layers.portrait;
    const int width = portrait.image.width, height = portrait.image.height;
    DefocusCore::ZelDepthDefocusRender effect;
    effect.setResourcePath("", (assets + "/bokeh").c_str());
    int shapeWidth = 0, shapeHeight = 0, channels = 0;
    unsigned char* shape = ZelImageCore::StbImageUtil::loadImageFromFile(
        (assets + "/bokeh/defocus_classic.png").c_str(), shapeWidth, shapeHeight, channels, false, true, 0,
        false, nullptr);
    effect.SetBokehImage("defocus_classic", shape, shapeWidth, shapeHeight);
    std::free(shape);
    effect.SetDepthPlane(layers.disparity.data(), width, height);
    std::vector<unsigned char> hair = portrait.hair.samples;
    effect.SetHairMaskData(hair.data(), width, height);
    FaceBox face = faceBoxOf(portrait);
    Rgba image = portrait.image.rgba;
    const zellab::OffscreenContext context;
    if (context.isCurrent())
        effect.Run(image.data(), width, height, 1, face.values, face.centreX(), face.centreY(), kLevel, 0.0f,
                   withHair, true, 1.0f, 0.0f, 0.0f);
    if (effect.LastOutcome() != DefocusCore::ZelDepthDefocusRender::Outcome::drawn) {
        std::fprintf(stderr, "no picture could be rendered\n");
        std::exit(1);
    }
    return image;
}

/// Distance in pixels of every pixel from the nearest one that is `marked`, up to kBand + 1, along the larger
/// of both axes.
std::vector<int> distances(const std::vector<bool>& marked, int width, int height) {
    std::vector<int> far(marked.size(), kBand + 1);
    for (std::size_t i = 0; i < marked.size(); ++i)
        if (marked[i]) far[i] = 0;
    const auto relax = [&](int x, int y, int nx, int ny) {
        if (nx < 0 || ny < 0 || nx >= width || ny >= height) return;
        const auto at = [&](int column, int row) {
            return static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                   static_cast<std::size_t>(column);
        };
        far[at(x, y)] = std::min(far[at(x, y)], far[at(nx, ny)] + 1);
    };
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            relax(x, y, x - 1, y), relax(x, y, x - 1, y - 1), relax(x, y, x, y - 1),
                relax(x, y, x + 1, y - 1);
    for (int y = height - 1; y >= 0; --y)
        for (int x = width - 1; x >= 0; --x)
            relax(x, y, x + 1, y), relax(x, y, x + 1, y + 1), relax(x, y, x, y + 1),
                relax(x, y, x - 1, y + 1);
    return far;
}

struct Score {
    double psnr = 0, ssim = 0, bandPsnr = 0;
    int haloOutside = 0, haloInside = 0;
    double errorAt[kBand + 1] = {};
};

/// Mean structural similarity of luma over blocks of 8 by 8.
double similarity(const Rgba& a, const Rgba& b, int width, int height) {
    constexpr int kBlock = 8;
    constexpr double kC1 = 6.5025, kC2 = 58.5225, kCount = kBlock * kBlock;
    double total = 0, blocks = 0;
    for (int top = 0; top + kBlock <= height; top += kBlock)
        for (int left = 0; left + kBlock <= width; left += kBlock) {
            double sa = 0, sb = 0, saa = 0, sbb = 0, sab = 0;
            for (int y = top; y < top + kBlock; ++y)
                for (int x = left; x < left + kBlock; ++x) {
                    const auto i = static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                                   static_cast<std::size_t>(x);
                    const double va = luma(a, i), vb = luma(b, i);
                    sa += va, sb += vb, saa += va * va, sbb += vb * vb, sab += va * vb;
                }
            const double ma = sa / kCount, mb = sb / kCount, va = saa / kCount - ma * ma,
                         vb = sbb / kCount - mb * mb;
            total += (2 * ma * mb + kC1) * (2 * (sab / kCount - ma * mb) + kC2) /
                     ((ma * ma + mb * mb + kC1) * (va + vb + kC2));
            ++blocks;
        }
    return total / blocks;
}

/// Pixels from the outline outwards (or inwards) to where the mean error falls to what it is farther off.
int haloWidth(const double (&error)[kBand + 1]) {
    double beyond = 0;
    for (int d = kBand / 2; d <= kBand; ++d) beyond += error[d] / (kBand / 2 + 1);
    int halo = 0;
    while (halo < kBand && error[halo + 1] > beyond + kVisible) ++halo;
    return halo;
}

Score compare(const Rgba& result, const Rgba& truth, const LayeredPortrait& layers) {
    const int width = layers.portrait.image.width, height = layers.portrait.image.height;
    std::vector<bool> person(layers.disparity.size()), rest(layers.disparity.size());
    for (std::size_t i = 0; i < person.size(); ++i) {
        person[i] = layers.portrait.person.samples[i] > 127;
        rest[i] = !person[i];
    }
    const std::vector<int> outwards = distances(person, width, height),
                           inwards = distances(rest, width, height);
    double squares = 0, bandSquares = 0, bandCount = 0, inside[kBand + 1] = {}, countOut[kBand + 1] = {},
           countIn[kBand + 1] = {};
    Score score;
    for (std::size_t i = 0; i < person.size(); ++i) {
        const double error = luma(result, i) - luma(truth, i);
        squares += error * error;
        const int out = outwards[i], in = inwards[i];
        if (out <= kBand && in <= kBand) bandSquares += error * error, ++bandCount;
        if (out > 0 && out <= kBand) score.errorAt[out] += std::fabs(error), ++countOut[out];
        if (in > 0 && in <= kBand) inside[in] += std::fabs(error), ++countIn[in];
    }
    for (int d = 1; d <= kBand; ++d)
        score.errorAt[d] /= std::max(countOut[d], 1.0), inside[d] /= std::max(countIn[d], 1.0);
    const auto psnr = [](double mean) { return 10 * std::log10(255 * 255 / std::max(mean, 1e-9)); };
    score.psnr = psnr(squares / static_cast<double>(person.size()));
    score.bandPsnr = psnr(bandSquares / std::max(bandCount, 1.0));
    score.ssim = similarity(result, truth, width, height);
    score.haloOutside = haloWidth(score.errorAt);
    score.haloInside = haloWidth(inside);
    return score;
}

void writePpm(const std::string& path, const Rgba& rgba, int width, int height) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) return;
    std::fprintf(file, "P6 %d %d 255\n", width, height);
    for (std::size_t i = 0; i < rgba.size(); i += 4) std::fwrite(&rgba[i], 1, 3, file);
    std::fclose(file);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    const std::string assets = argv[1], out = argc > 5 ? argv[5] : "";
    zel::PortraitParams params;
    params.width = argc > 3 ? std::atoi(argv[2]) : 3000;
    params.height = argc > 3 ? std::atoi(argv[3]) : 4000;
    params.defocus = 0.0;
    const zel::BackgroundKind places[] = {zel::BackgroundKind::room, zel::BackgroundKind::bookshelf,
                                          zel::BackgroundKind::field, zel::BackgroundKind::streetLights};
    const char* const names[] = {"room", "bookshelf", "field", "street lights"};
    std::printf(
        "| seed, background | hair mask | PSNR | SSIM | PSNR at the outline | halo outside, inside |\n"
        "|---|---|--:|--:|--:|--:|\n");
    for (int i = 0; i < (argc > 4 ? std::atoi(argv[4]) : 4); ++i) {
        params.seed = static_cast<unsigned>(i + 1);
        params.background = places[i % 4];
        const LayeredPortrait layers = drawLayers(params);
        const Rgba truth = trueDefocus(layers, kLevel);
        if (!out.empty())
            writePpm(out + "/" + std::to_string(i) + "-truth.ppm", truth, params.width, params.height);
        for (const bool hair : {false, true}) {
            const Rgba result = render(assets, layers, hair);
            const Score score = compare(result, truth, layers);
            std::printf("| %u, %s | %s | %.1f | %.3f | %.1f | %d, %d px |\n", params.seed, names[i % 4],
                        hair ? "yes" : "no", score.psnr, score.ssim, score.bandPsnr, score.haloOutside,
                        score.haloInside);
            std::fprintf(stderr, "error by distance:");
            for (int d = 1; d <= 16; ++d) std::fprintf(stderr, " %.1f", score.errorAt[d]);
            std::fprintf(stderr, " ... %.1f\n", score.errorAt[kBand]);
            if (!out.empty())
                writePpm(out + "/" + std::to_string(i) + (hair ? "-hair.ppm" : "-plain.ppm"), result,
                         params.width, params.height);
        }
        std::fflush(stdout);
    }
}
