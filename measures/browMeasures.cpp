// How much of the brows the outlines of features cover, on drawn portraits whose brows are known. Prints the
// table of docs/measures.md. Usage: zel_brow_measures [PORTRAITS [FIRST-SEED]]
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "beautykernel/skintools/featureMaskPainter.h"
#include "facepoints/faceData.h"
#include "portrait/portrait.h"
#include "zellab/imageproc/shapes/polygonFill.h"

namespace {

using zellab::Vector2f;

constexpr int kWidth = 450, kHeight = 600;
using Landmarks = std::array<Vector2f, 83>;

/// Shares of the brows' own cover that lie inside an outline, brow by brow.
struct Tally {
    double whole = 0, outer = 0, worst = 1, worstOuter = 1, area = 0;
    int brows = 0;

    void add(const zel::Mask& truth, const std::vector<unsigned char>& outline, const Landmarks& marks) {
        for (const bool left : {true, false}) {
            const Vector2f outerEnd = marks[left ? 29 : 79], innerEnd = marks[left ? 33 : 75];
            const float middle = (marks[33].x + marks[75].x) / 2,
                        third = outerEnd.x + (innerEnd.x - outerEnd.x) / 3;
            double all = 0, inside = 0, allOuter = 0, insideOuter = 0, filled = 0;
            for (int y = 0; y < kHeight; ++y)
                for (int x = 0; x < kWidth; ++x) {
                    const float at = static_cast<float>(x) + 0.5f;
                    if ((at < middle) != left) continue;
                    const auto i = static_cast<std::size_t>(y * kWidth + x);
                    const bool covered = outline[i] != 0, outerPart = left ? at < third : at > third;
                    const double cover = truth.samples[i];
                    filled += covered * 255.0;
                    all += cover, inside += covered * cover;
                    if (outerPart) allOuter += cover, insideOuter += covered * cover;
                }
            const double share = inside / std::max(all, 1.0),
                         shareOuter = insideOuter / std::max(allOuter, 1.0);
            whole += share, outer += shareOuter, area += filled / std::max(all, 1.0), ++brows;
            worst = std::min(worst, share), worstOuter = std::min(worstOuter, shareOuter);
        }
    }
    void print(const char* name) const {
        std::printf("| %s | %.1f %% | %.1f %% | %.1f %% | %.1f %% | %.2f |\n", name, 100 * whole / brows,
                    100 * worst, 100 * outer / brows, 100 * worstOuter, area / brows);
    }
};

}  // namespace

int main(int argc, char** argv) {
    const int portraits = argc > 1 ? std::atoi(argv[1]) : 40;
    const unsigned first = argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1;
    Tally hulls, polygons;
    for (int k = 0; k < portraits; ++k) {
        zel::PortraitParams params;
        params.seed = first + static_cast<unsigned>(k);
        params.width = kWidth, params.height = kHeight;
        const zel::Portrait portrait = drawPortrait(params);
        Landmarks marks = portrait.faces.faces.front().points;
        for (Vector2f& p : marks) p = {p.x * kWidth, p.y * kHeight};
        zellab::CInterFacePoint points;
        points.SetFaceCount(1);
        points.AddFace(marks.data(), 0);
        const Vector2f* list = points.GetInterPoints(0);

        std::vector<unsigned char> plane(static_cast<std::size_t>(kWidth * kHeight));
        zellab::CFeatureMaskPainter::Paint({plane.data(), kWidth, kHeight}, list, zellab::kBrows, 255);
        hulls.add(portrait.brows, plane, marks);
        std::fill(plane.begin(), plane.end(), static_cast<unsigned char>(0));
        for (const int end : {20, 30}) {
            std::vector<Vector2f> polygon(list + end, list + end + 6);
            for (int i = 9; i >= 6; --i) polygon.push_back(list[end + i]);
            polygon.push_back(list[end]);
            zellab::FillPolygonMask({plane.data(), kWidth, kHeight}, polygon, 255);
        }
        polygons.add(portrait.brows, plane, marks);
    }
    std::puts(
        "| outline | of a brow, mean | worst | of its outer third, mean | worst | outline's area, in brows "
        "|");
    std::puts("|---|--:|--:|--:|--:|--:|");
    hulls.print("hull, for skin masks");
    polygons.print("polygon, for flecks");
}
