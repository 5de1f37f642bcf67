// How well flecks are found and repaired: draws portraits with moles and with freckles, cleans them with both
// methods, and compares with the same portraits drawn without them.
//   measureFlecks [COUNT] [FIRST-SEED]
// A fleck counts when it lies on the face and its diameter is at least 1 in 100 of the pupils' distance; it
// counts as removed where the mean error inside it fell by half. A false repair is a connected patch of
// changed pixels that meets no fleck of any size; it is visible where it changed the picture by more than 4
// levels in the mean.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <opencv2/imgproc.hpp>
#include <opencv2/photo.hpp>
#include <vector>

#include "faceRecords.h"
#include "portrait.h"
#include "zel_effects.h"

namespace {

constexpr double kLeastDiameter = 0.01;  // of the pupils' distance
constexpr double kVisible = 4;           // levels of mean change

struct Fleck {
    std::vector<std::size_t> pixels;
    double diameter;  // of the disc of that area
};

/// Squared errors of one way to repair, over the pixels that the library changed.
struct Error {
    double sum = 0;
    void add(const unsigned char* a, const unsigned char* b) {
        for (int c = 0; c < 3; ++c) sum += (a[c] - b[c]) * (a[c] - b[c]);
    }
    double psnr(double pixels) const { return 10 * std::log10(255.0 * 255.0 * 3 * pixels / sum); }
};

struct Tally {
    int faces = 0, flecks = 0, removed = 0, falseRepairs = 0, visibleRepairs = 0;
    long featurePixels = 0;  // changed pixels on eyes, brows and lips
    double changed = 0;      // pixels
    Error before, ours, telea, navierStokes;
};

cv::Mat planeOf(const zel::Mask& mask) {
    return cv::Mat(mask.height, mask.width, CV_8U, const_cast<unsigned char*>(mask.samples.data()));
}

/// The connected parts of a plane that are not 0.
std::vector<Fleck> partsOf(const cv::Mat& plane) {
    cv::Mat labels;
    const int count = cv::connectedComponents(plane, labels, 8, CV_32S);
    std::vector<Fleck> parts(static_cast<std::size_t>(count - 1));
    for (std::size_t i = 0; i < labels.total(); ++i)
        if (const int label = labels.ptr<int>()[i])
            parts[static_cast<std::size_t>(label - 1)].pixels.push_back(i);
    for (Fleck& part : parts) part.diameter = std::sqrt(static_cast<double>(part.pixels.size()) * 4 / CV_PI);
    return parts;
}

double errorIn(const Fleck& fleck, const zel::Image& a, const zel::Image& b) {
    double sum = 0;
    for (const std::size_t i : fleck.pixels)
        for (std::size_t c = 0; c < 3; ++c) sum += std::abs(a.rgba[4 * i + c] - b.rgba[4 * i + c]);
    return sum;
}

/// Those flecks of a layer that count.
std::vector<Fleck> countedFlecks(const zel::Mask& layer, const zel::Portrait& p) {
    const double pupils = std::hypot(p.irises[0].x - p.irises[1].x, p.irises[0].y - p.irises[1].y);
    std::vector<Fleck> flecks = partsOf(planeOf(layer) > 96);
    std::erase_if(flecks, [&](const Fleck& f) {
        const auto onFace = std::count_if(f.pixels.begin(), f.pixels.end(), [&](std::size_t i) {
            return p.face.samples[i] > 200 && p.skin.samples[i] > 200;
        });
        return f.diameter < kLeastDiameter * pupils || static_cast<std::size_t>(onFace) < f.pixels.size();
    });
    return flecks;
}

void addPeers(const zel::Portrait& p, const cv::Mat& changed, Tally& tally) {
    cv::Mat rgb, telea, navierStokes;
    cv::cvtColor(
        cv::Mat(p.image.height, p.image.width, CV_8UC4, const_cast<unsigned char*>(p.image.rgba.data())), rgb,
        cv::COLOR_RGBA2RGB);
    constexpr double kRadius = 3;  // pixels, as in the peer's own examples
    cv::inpaint(rgb, changed, telea, kRadius, cv::INPAINT_TELEA);
    cv::inpaint(rgb, changed, navierStokes, kRadius, cv::INPAINT_NS);
    for (std::size_t i = 0; i < changed.total(); ++i) {
        if (!changed.data[i]) continue;
        const unsigned char* clean = &p.clean.rgba[4 * i];
        tally.telea.add(telea.data + 3 * i, clean);
        tally.navierStokes.add(navierStokes.data + 3 * i, clean);
    }
}

void measure(const zel::Portrait& p, const zel::Mask& layer, int method, Tally& tally) {
    zel::Image image = p.image;
    const auto points = zel::makeFacePoints(p.faces, image.width, image.height);
    CGRect rect = zel::faceRectInPixels(p.faces.faces[0], image.width, image.height);
    ZelImageCore::TableSkin::ImageProcessWithAutoFaceInpaint(image.rgba.data(), nullptr, image.width,
                                                             image.height, rect, points.get(), 0, method);
    ++tally.faces;
    cv::Mat changed = cv::Mat::zeros(image.height, image.width, CV_8U);
    for (std::size_t i = 0; i < changed.total(); ++i) {
        const unsigned char *now = &image.rgba[4 * i], *was = &p.image.rgba[4 * i],
                            *clean = &p.clean.rgba[4 * i];
        if (std::equal(now, now + 3, was)) continue;
        changed.data[i] = 255;
        tally.changed += 1;
        tally.before.add(was, clean);
        tally.ours.add(now, clean);
        tally.featurePixels += std::max({p.eyes.samples[i], p.brows.samples[i], p.lips.samples[i]}) > 127;
    }
    for (const Fleck& fleck : countedFlecks(layer, p)) {
        ++tally.flecks;
        tally.removed += errorIn(fleck, image, p.clean) < 0.5 * errorIn(fleck, p.image, p.clean);
    }
    for (const Fleck& patch : partsOf(changed)) {
        const bool meetsFleck = std::any_of(patch.pixels.begin(), patch.pixels.end(),
                                            [&](std::size_t i) { return layer.samples[i] > 16; });
        if (meetsFleck) continue;
        ++tally.falseRepairs;
        tally.visibleRepairs +=
            errorIn(patch, image, p.image) > kVisible * 3 * static_cast<double>(patch.pixels.size());
    }
    addPeers(p, changed, tally);
}

void print(const char* layer, const char* method, const Tally& t) {
    std::printf("| %s | %s | %d | %d | %.2f | %.1f | %.1f | %ld | %.1f | %.1f | %.1f | %.1f |\n", layer,
                method, t.faces, t.flecks, t.flecks ? static_cast<double>(t.removed) / t.flecks : 0.0,
                static_cast<double>(t.falseRepairs) / t.faces,
                static_cast<double>(t.visibleRepairs) / t.faces, t.featurePixels, t.before.psnr(t.changed),
                t.ours.psnr(t.changed), t.telea.psnr(t.changed), t.navierStokes.psnr(t.changed));
}

}  // namespace

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::atoi(argv[1]) : 20;
    const unsigned firstSeed = argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1;
    Tally tallies[2][2];
    for (int i = 0; i < count; ++i)
        for (int layer : {0, 1}) {
            zel::PortraitParams params;
            params.seed = firstSeed + static_cast<unsigned>(i);
            params.moles = layer == 0 ? 12 : 0;
            params.freckles = layer == 1 ? 0.5 : 0.0;
            const zel::Portrait p = zel::drawPortrait(params);
            for (int method : {0, 1})
                measure(p, layer == 0 ? p.moles : p.freckles, method, tallies[layer][method]);
        }
    std::printf(
        "| spots | method | faces | spots | removed | false a face | visible | feature pixels | PSNR before "
        "| "
        "PSNR repaired | Telea | Navier-Stokes |\n|---|---|---|---|---|---|---|---|---|---|---|---|\n");
    for (int layer : {0, 1})
        for (int method : {0, 1})
            print(layer == 0 ? "moles" : "freckles", method == 0 ? "flecks" : "fine", tallies[layer][method]);
    return 0;
}
