#include <gtest/gtest.h>

#include <cmath>

#include "beautykernel/facefleckcleaner/blobFinder.h"
#include "beautykernel/facefleckcleaner/faceCrop.h"
#include "beautykernel/facefleckcleaner/faceFleckCleaner.h"
#include "beautykernel/facefleckcleaner/featureExclusion.h"
#include "facepoints/faceTemplate.h"
#include "support/randomImage.h"
#include "support/standardFace.h"
#include "zel_effects/zel_effects.h"
#include "zellab/geometry/vector2.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace {

using namespace zellab;
using ZelImageCore::TableSkin;
using zeltest::Bytes;

/// Slightly grained skin with the template's face on it and round dark spots.
struct Face {
    int width, height;
    Bytes pixels;
    CInterFacePoint points;
    CGRect rect;

    Face(int w, int h) : width(w), height(h), pixels(zeltest::randomRgba(w, h, 5)) {
        // Lit from the right, so that the skin has a range of brightness to be learnt.
        const float skin[3] = {200, 156, 132};
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            const float light = 0.75f + 0.25f * static_cast<float>(i / 4 % static_cast<std::size_t>(w)) /
                                            static_cast<float>(w);
            if (i % 4 != 3)
                pixels[i] = static_cast<Byte>(skin[i % 4] * light + static_cast<float>(pixels[i] % 5));
        }
        std::array<Vector2f, 83> landmarks = kTemplateLandmarks;
        for (Vector2f& p : landmarks) p = {p.x * static_cast<float>(w), p.y * static_cast<float>(h)};
        points.AddFace(landmarks.data(), 0);
        points.SetFaceCount(1);
        const Vector2f chin = landmarks[0], temple = landmarks[1], otherTemple = landmarks[10];
        rect = {temple.x, temple.y - (chin.y - temple.y) * 0.4f, otherTemple.x - temple.x,
                (chin.y - temple.y) * 1.4f};
    }
    Vector2f at(int point) const { return points.GetInterPoints(0)[point]; }
    void spot(Vector2f c, float radius) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if (std::hypot(static_cast<float>(x) - c.x, static_cast<float>(y) - c.y) < radius) {
                    Byte* p = &pixels[static_cast<std::size_t>(y * width + x) * 4];
                    p[0] = 130, p[1] = 102, p[2] = 85;
                }
    }
    void clean(int method, unsigned char* mask = nullptr, int face = 0) {
        TableSkin::ImageProcessWithAutoFaceInpaint(pixels.data(), mask, width, height, rect, &points, face,
                                                   method);
    }
    int green(Vector2f c) const {
        return pixels[static_cast<std::size_t>(static_cast<int>(c.y) * width + static_cast<int>(c.x)) * 4 +
                      1];
    }
};

/// On the cheeks, half way from an eye to the jaw.
Vector2f cheek(const Face& face, int eye, int jaw) {
    const Vector2f a = face.at(eye), b = face.at(jaw);
    return {a.x + (b.x - a.x) * 0.5f, a.y + (b.y - a.y) * 0.5f};
}

TEST(AutoFaceInpaint, RemovesSpotsFromTheCheeks) {
    for (int method : {0, 1}) {
        Face face(540, 960);
        const Vector2f spots[] = {cheek(face, 7, 93), cheek(face, 18, 103)};
        for (const Vector2f s : spots) face.spot(s, 5);
        face.clean(method);
        for (const Vector2f s : spots) EXPECT_GT(face.green(s), 116) << "method " << method;
    }
}

TEST(AutoFaceInpaint, SpotsInsideFeaturesStay) {
    for (int method : {0, 1}) {
        Face face(540, 960);
        // The middles of a brow, an eye, the mouth and the nose's tip.
        const Vector2f middles[] = {cheek(face, 22, 27), cheek(face, 2, 8), cheek(face, 53, 76), face.at(48)};
        for (const Vector2f m : middles) face.spot(m, 4);
        const Vector2f outside = cheek(face, 18, 103);
        face.spot(outside, 5);
        const Bytes before = face.pixels;
        face.clean(method);
        EXPECT_GT(face.green(outside), 116) << "method " << method;
        for (int y = 0; y < face.height; ++y)
            for (int x = 0; x < face.width; ++x)
                for (const Vector2f m : middles) {
                    const auto i = static_cast<std::ptrdiff_t>(y * face.width + x) * 4;
                    const bool isSpot =
                        std::hypot(static_cast<float>(x) - m.x, static_cast<float>(y) - m.y) < 4;
                    ASSERT_TRUE(!isSpot || std::equal(before.begin() + i, before.begin() + i + 4,
                                                      face.pixels.begin() + i))
                        << "method " << method << ", " << x << ',' << y;
                }
    }
}

TEST(FeatureExclusion, ReachesAsFarOutAtBothCornersOfTheMouth) {
    CInterFacePoint points;
    points.AddFace(zeltest::standardFace(300, 330, 200).data(), 0);
    FaceCrop crop;
    crop.width = 600, crop.height = 700;
    std::copy_n(points.GetInterPoints(0), crop.points.size(), crop.points.begin());
    crop.mask = Plane<Byte>(crop.width, crop.height);
    std::fill_n(crop.mask.data(), crop.mask.size(), Byte{255});
    excludeFeatures(crop, false);
    // The widened outline runs from its tip beside a corner of the lips straight to the lower lip: the middle
    // of the triangle between the tip, the corner and the lower lip lies inside.
    const auto widened = [&](std::size_t inner, std::size_t outer, float share) {
        return mix(crop.points[inner], crop.points[outer], share);
    };
    for (const auto& [tip, corner, lip] :
         {std::array{widened(50, 123, 0.5f), widened(50, 123, 0.2f), widened(73, 158, 0.2f)},
          {widened(58, 143, 0.5f), widened(58, 143, 0.2f), widened(79, 168, 0.2f)}}) {
        const Vector2f middle = (tip + corner + lip) * (1.0f / 3.0f);
        EXPECT_EQ(crop.mask.row(static_cast<int>(middle.y))[static_cast<int>(middle.x)], 1)
            << "a spot at " << middle.x << ',' << middle.y << " would be repaired";
    }
}

TEST(AutoFaceInpaint, TheCallersMaskNarrowsTheSearchAndReceivesTheSkin) {
    for (int method : {0, 1, 2}) {
        Face face(270, 480);
        face.spot(cheek(face, 7, 93), 4);
        const Bytes before = face.pixels;
        Bytes mask(before.size() / 4, 0);
        face.clean(method, mask.data());
        EXPECT_EQ(face.pixels, before) << "nothing may be searched";
        EXPECT_EQ(mask, Bytes(mask.size(), 0));
        std::fill(mask.begin() + static_cast<std::ptrdiff_t>(mask.size() / 2), mask.end(), Byte{7});
        face.clean(method, mask.data());
        const auto half = mask.begin() + static_cast<std::ptrdiff_t>(mask.size() / 2);
        EXPECT_TRUE(std::all_of(mask.begin(), half, [](Byte m) { return m == 0; }));
        EXPECT_TRUE(std::any_of(half, mask.end(), [](Byte m) { return m > 200; }));
        if (method == 2) {
            EXPECT_EQ(face.pixels, before);
        }
    }
}

// Without a mask the skin is found on the face alone: the picture must be the same.
TEST(AutoFaceInpaint, AWhiteMaskChangesNothing) {
    for (int method : {0, 1})
        for (const Vector2f shift : {Vector2f{0, 0}, {90, 40}, {-70, -150}, {150, 240}}) {
            Face face(330, 560);
            std::array<Vector2f, 83> landmarks = kTemplateLandmarks;
            for (Vector2f& p : landmarks) p = {p.x * 240 + shift.x, p.y * 430 + shift.y};
            face.points.AddFace(landmarks.data(), 0);
            face.rect = {shift.x + 40, shift.y + 60, 160, 250};
            face.spot(cheek(face, 7, 93), 4);
            face.spot(cheek(face, 18, 103), 5);
            Bytes white(face.pixels.size() / 4, 255), before = face.pixels;
            face.clean(method, white.data());
            before.swap(face.pixels);
            face.clean(method);
            EXPECT_EQ(face.pixels, before) << "method " << method << ", " << shift.x;
        }
}

TEST(AutoFaceInpaint, ARectangleWithoutAreaDoesNothing) {
    for (const CGRect rect : {CGRect{5, 5, 0, 9}, CGRect{5, 5, 9, -1}, CGRect{5, 5, NAN, 9}}) {
        Face face(135, 240);
        const Bytes before = face.pixels;
        face.rect = rect;
        Bytes mask(before.size() / 4, 9);
        face.clean(1, mask.data());
        EXPECT_EQ(face.pixels, before);
        EXPECT_EQ(mask, Bytes(mask.size(), 9));
    }
}

TEST(FaceCrop, WorkingSizeFollowsTheShorterSide) {
    EXPECT_EQ(workingSize({0, 0, 280, 500}, 280).height, 500);
    const WorkingSize size = workingSize({0, 0, 281, 500}, 280);
    EXPECT_EQ(size.width, 280);
    EXPECT_EQ(size.height, 498);
    EXPECT_EQ(workingSize({0, 0, 900, 560}, 280).width, 450);
}

TEST(FaceFleckCleaner, TellsWhereItLooked) {
    Face face(270, 480);
    face.spot(cheek(face, 7, 93), 4);
    zelbeauty::SkinFaceRecord record;
    std::copy_n(face.points.GetInterPoints(0), 310, record.points);
    const Bytes skin(face.pixels.size() / 4, 255);
    Bytes out(skin.size(), 0);
    const zellab::ImageView image(face.pixels.data(), 270, 480);
    const zellab::PlaneView<const Byte> map(skin.data(), 270, 480);
    FaceFleckCleaner cleaner;
    EXPECT_FALSE(cleaner.CleanFace(image, map, {}, {out.data(), 270, 480}, false));
    EXPECT_TRUE(cleaner.CleanFace(image, map, {&record, 1}, {out.data(), 270, 480}, false));
    ASSERT_FALSE(cleaner.flecks().empty());
    for (std::size_t i = 0; i + 1 < cleaner.flecks().size(); ++i)
        EXPECT_LE(cleaner.flecks()[i].area, cleaner.flecks()[i + 1].area);
    EXPECT_EQ(out[0], 80);
    EXPECT_EQ(out[static_cast<std::size_t>(face.at(48).y) * 270 + static_cast<std::size_t>(face.at(48).x)],
              255);
}

TEST(BlobFinder, EqualBlursFindNothingAndMarksGuard) {
    const int size = 320;
    Bytes plane = zeltest::randomPlane(size, size, 8), mask(plane.size(), 255), protect(plane.size(), 0);
    for (Byte& v : plane) v = static_cast<Byte>(180 + v % 16);
    for (int y = 100; y < 110; ++y)
        std::fill_n(&plane[static_cast<std::size_t>(y * size + 150)], 10, Byte{60});
    const auto count = [&](BlobRadii radii) {
        const Plane<Byte> blobs = findBlobs({plane.data(), size, size}, {mask.data(), size, size},
                                            {protect.data(), size, size}, radii, 0.001f);
        return std::count(blobs.data() + 105 * size, blobs.data() + 106 * size, Byte{255});
    };
    EXPECT_EQ(count({0, 0}), 0);
    EXPECT_GE(count({2, 12}), 8);
    std::fill(protect.begin(), protect.end(), Byte{1});
    EXPECT_EQ(count({2, 12}), 0);
}

}  // namespace
