#include "ZelEffectsCore/ZelEffect/mesh_warp/triangleWarp.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "frame/processorCount.h"
#include "support/randomImage.h"
#include "zellab/imageproc/resample/cubicConvolution.h"
#include "zellab/imageproc/shapes/triangleRaster.h"

namespace {

using namespace zellab;
using Triangle = std::array<Vector2f, 3>;

/// The plain meaning of a bicubic sample of one channel, tap by tap.
unsigned char slowSample(const zeltest::Bytes& picture, int width, int height, Vector2f at,
                         std::size_t channel) {
    const auto place = [](float v, int size) {
        return std::trunc(v) < 0 ? 0.0f : v >= static_cast<float>(size) ? static_cast<float>(size - 1) : v;
    };
    const float fx = place(at.x, width), fy = place(at.y, height);
    const int x = static_cast<int>(fx), y = static_cast<int>(fy);
    float wx[4], wy[4], sum = 0.5f;
    CubicConvolutionWeights(fx - static_cast<float>(x), wx);
    CubicConvolutionWeights(fy - static_cast<float>(y), wy);
    for (int j = 0; j < 4; ++j) {
        float row = 0.0f;
        for (int i = 0; i < 4; ++i) {
            const int px = std::clamp(x - 1 + i, 0, width - 1), py = std::clamp(y - 1 + j, 0, height - 1);
            const auto index = static_cast<std::size_t>(py * width + px) * 4 + channel;
            row += static_cast<float>(picture[index]) * wx[i];
        }
        sum += row * wy[j];
    }
    return static_cast<unsigned char>(std::clamp(static_cast<int>(sum), 0, 255));
}

/// The same-side test in plain words.
bool slowInside(const Triangle& t, float x, float y) {
    for (std::size_t i = 0; i < 3; ++i) {
        const Vector2f a = t[i], b = t[(i + 1) % 3], c = t[(i + 2) % 3];
        const auto cross = [&](Vector2f p) { return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x); };
        if (!(cross(c) * cross({x, y}) >= 0.0f)) return false;
    }
    return true;
}

Triangle randomTriangle(std::mt19937& random, float low, float high, bool whole) {
    std::uniform_real_distribution<float> place(low, high);
    Triangle t;
    for (Vector2f& v : t) v = {place(random), place(random)};
    if (whole)
        for (Vector2f& v : t) v = {std::round(v.x), std::round(v.y)};
    return t;
}

// The spans are found by division and bisection; the meaning is a test per pixel. Whole coordinates bring
// pixels exactly on edges, equal vertices and triangles without area.
TEST(TriangleRaster, TakesThePixelsThatPassTheSideTests) {
    std::mt19937 random(11);
    constexpr int kWidth = 23, kHeight = 17;
    for (int round = 0; round < 3000; ++round) {
        const Triangle t = randomTriangle(random, -8, 30, round % 2 == 0);
        const TriangleRaster raster(t[0], t[1], t[2], kWidth, kHeight);
        for (int y = 0; y < kHeight; ++y) {
            const bool row = !raster.empty() && y >= raster.top() && y <= raster.bottom();
            const PixelSpan span = row ? raster.span(y) : PixelSpan{};
            for (int x = 0; x < kWidth; ++x) {
                const bool boxed = row && x >= raster.left() && x <= raster.right();
                const bool expected = boxed && slowInside(t, static_cast<float>(x), static_cast<float>(y));
                ASSERT_EQ(x >= span.first && x <= span.last, expected) << round << ": " << x << ',' << y;
            }
        }
    }
}

TEST(TriangleRaster, HostileVerticesStayInThePicture) {
    const float inf = std::numeric_limits<float>::infinity(), nan = std::nanf(""), huge = 3e38f;
    for (float bad : {inf, -inf, nan, huge, -huge}) {
        const TriangleRaster raster({bad, 3}, {4, bad}, {2, 2}, 9, 7);
        for (int y = raster.top(); y <= raster.bottom(); ++y) {
            const PixelSpan span = raster.span(y);
            EXPECT_TRUE(span.empty() || (span.first >= 0 && span.last < 9));
        }
        EXPECT_GE(raster.top(), 0);
        EXPECT_LT(raster.bottom(), 7);
    }
}

TEST(SampleBicubicPixel, MatchesTheTapByTapSumInsideAndBeyondThePicture) {
    std::mt19937 random(5);
    for (const auto& [width, height] : {std::pair{13, 9}, {1, 1}, {2, 3}, {1, 40}}) {
        const zeltest::Bytes src = zeltest::randomRgba(width, height, 8);
        std::uniform_real_distribution<float> x(-3.0f, static_cast<float>(width) + 3),
            y(-3.0f, static_cast<float>(height) + 3);
        for (int round = 0; round < 500; ++round) {
            const Vector2f at{x(random), y(random)};
            zeltest::Bytes dst = zeltest::randomRgba(width, height, 9);
            const unsigned char alpha = dst[3];
            SampleBicubicPixel({src.data(), width, height}, {dst.data(), width, height}, at, {0.9f, -0.9f});
            for (std::size_t c = 0; c < 3; ++c)
                ASSERT_EQ(dst[c], slowSample(src, width, height, at, c)) << at.x << ',' << at.y;
            ASSERT_EQ(dst[3], alpha);
        }
    }
}

/// A grid of triangles whose inner vertices are shaken; some lie outside the picture.
struct Mesh {
    std::vector<Vector2f> from, to;
    std::vector<std::uint16_t> triangles;
    int count() const { return static_cast<int>(triangles.size() / 3); }
};

Mesh shakenMesh(float left, float top, float step, int side, float shake) {
    std::mt19937 random(21);
    std::uniform_real_distribution<float> offset(-shake, shake);
    Mesh mesh;
    for (int j = 0; j <= side; ++j)
        for (int i = 0; i <= side; ++i) {
            const Vector2f v{left + step * static_cast<float>(i), top + step * static_cast<float>(j)};
            const bool inner = i > 0 && j > 0 && i < side && j < side;
            mesh.from.push_back(v);
            mesh.to.push_back(inner ? Vector2f{v.x + offset(random), v.y + offset(random)} : v);
        }
    for (int j = 0; j < side; ++j)
        for (int i = 0; i < side; ++i) {
            const int a = j * (side + 1) + i, b = a + 1, c = a + side + 1, d = c + 1;
            for (int v : {a, b, c, b, d, c}) mesh.triangles.push_back(static_cast<std::uint16_t>(v));
        }
    return mesh;
}

// The warp in place copies a box and splits rows over workers; its bytes are those of the documented order:
// every triangle in turn, every pixel in turn, from a copy of the whole picture.
TEST(TriangleWarp, InPlaceAndWholeCopyGiveTheBytesOfTheSlowOrder) {
    constexpr int kWidth = 150, kHeight = 130;
    const zeltest::Bytes before = zeltest::patternRgba(kWidth, kHeight, 4);
    const Mesh mesh = shakenMesh(-20, 30, 24, 6, 9);
    zeltest::Bytes slow = before, whole = before;
    const TriangleWarpTable table;
    for (int i = 0; i < mesh.count(); ++i) {
        const std::uint16_t* v = &mesh.triangles[static_cast<std::size_t>(3 * i)];
        const Triangle from = {mesh.to[v[0]], mesh.to[v[1]], mesh.to[v[2]]},
                       to = {mesh.from[v[0]], mesh.from[v[1]], mesh.from[v[2]]};
        bool moved = false, visible = false;
        for (std::size_t k = 0; k < 3; ++k) {
            moved = moved || from[k].x != to[k].x || from[k].y != to[k].y;
            visible = visible || (from[k].x > -0.5f && from[k].x < kWidth - 0.5f && from[k].y > -0.5f &&
                                  from[k].y < kHeight - 0.5f);
        }
        if (!moved || !visible) continue;
        float affine[9];
        TriangleAffineMap(affine, &from[0].x, &to[0].x);
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                const auto fx = static_cast<float>(x), fy = static_cast<float>(y);
                if (!slowInside(from, fx, fy)) continue;
                const Vector2f at{affine[0] * fx + affine[1] * fy + affine[2],
                                  affine[3] * fx + affine[4] * fy + affine[5]};
                for (std::size_t c = 0; c < 3; ++c)
                    slow[static_cast<std::size_t>(y * kWidth + x) * 4 + c] =
                        slowSample(before, kWidth, kHeight, at, c);
            }
    }
    WarpByTriangles(table, {before.data(), kWidth, kHeight}, {whole.data(), kWidth, kHeight},
                    mesh.from.data(), mesh.to.data(), mesh.triangles.data(), mesh.count());
    EXPECT_TRUE(whole == slow);
    for (int workers : {1, 3}) {
        const WorkerCount limit(workers);
        zeltest::Bytes inPlace = before;
        warpInPlace(ImageView(inPlace.data(), kWidth, kHeight), mesh.from.data(), mesh.to.data(),
                    mesh.triangles.data(), mesh.count());
        EXPECT_TRUE(inPlace == slow) << workers << " workers";
    }
}

TEST(TriangleWarp, DrawsNeitherUnmovedTrianglesNorThoseWithoutAVertexInside) {
    const zeltest::Bytes before = zeltest::randomRgba(20, 20, 2);
    zeltest::Bytes after = before;
    const ImageView image(after.data(), 20, 20);
    const std::uint16_t triangle[3] = {0, 1, 2};
    const Triangle still = {Vector2f{2, 2}, {15, 3}, {4, 16}};
    warpInPlace(image, still.data(), still.data(), triangle, 1);
    EXPECT_TRUE(after == before);
    // It covers the whole picture.
    const Triangle around = {Vector2f{-100, -50}, {120, -50}, {10, 200}};
    warpInPlace(image, still.data(), around.data(), triangle, 1);
    EXPECT_TRUE(after == before);
    warpInPlace(image, around.data(), still.data(), triangle, 0);
    EXPECT_TRUE(after == before);
}

// Two equal vertices: no map, and every pixel of the box passes the side tests. Nothing may be read outside.
TEST(TriangleWarp, DegenerateAndHostileTrianglesStayInThePicture) {
    const float inf = std::numeric_limits<float>::infinity(), nan = std::nanf("");
    const std::uint16_t triangle[3] = {0, 1, 2};
    for (float v : {5.0f, inf, nan, 1e30f, -1e9f})
        for (const auto& [width, height] : {std::pair{12, 10}, {1, 1}}) {
            zeltest::Bytes inPlace = zeltest::randomRgba(width, height, 2);
            const zeltest::Bytes source = inPlace;
            zeltest::Bytes whole = source;
            const Triangle from = {Vector2f{1, 2}, {9, 3}, {v, 8}}, to = {Vector2f{0, 0}, {v, 7}, {0, 0}};
            warpInPlace(ImageView(inPlace.data(), width, height), from.data(), to.data(), triangle, 1);
            WarpByTriangles({}, {source.data(), width, height}, {whole.data(), width, height}, from.data(),
                            to.data(), triangle, 1);
            EXPECT_TRUE(inPlace == whole) << v;
        }
}

TEST(TriangleWarpTable, LaterEntriesWinWhereTheIndexMeets) {
    const TriangleWarpTable table;
    // (0, 16), (1, 0) and (1, 16) share entry 16, written in this order.
    EXPECT_EQ(table.corner(0)[16], 0);
    EXPECT_EQ(table.corner(1)[16], 15 * 16 * 256);
    EXPECT_EQ(table.corner(0)[17], 15 * 15 * 256);
    EXPECT_EQ(table.corner(2)[272], 16 * 16 * 256);
    EXPECT_EQ(table.products()[256 * 256 + 255], 255);
    EXPECT_EQ(table.products()[128 * 256 + 255], 127);
}

}  // namespace
