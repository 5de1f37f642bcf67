#include "zellab/imageproc/masks/regionLabelling.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/everyMachine.h"
#include "support/randomImage.h"

namespace {

using zellab::LabelConnectedRuns;
using zellab::RegionBox;
using zeltest::Bytes;

struct Labelling {
    std::vector<int> labels;
    std::vector<RegionBox> boxes;
};

Labelling labelled(const Bytes& plane, int width) {
    Labelling result;
    result.labels.assign(plane.size(), -7);
    const int height = static_cast<int>(plane.size()) / width;
    result.boxes = LabelConnectedRuns({plane.data(), width, height}, {result.labels.data(), width, height});
    return result;
}

Bytes fromText(std::initializer_list<const char*> rows) {
    Bytes plane;
    for (const char* row : rows)
        for (const char* p = row; *p; ++p) plane.push_back(*p == '#' ? 255 : 0);
    return plane;
}

TEST(LabelConnectedRuns, NumbersRegionsByTheirFirstPixel) {
    // The cup's two sides meet at its bottom only, so its right side must take the number of the left.
    const Labelling cup = labelled(fromText({"#.#.#",  //
                                             "#...#",  //
                                             ".###.",  //
                                             "....."}),
                                   5);
    ASSERT_EQ(cup.boxes.size(), 2u);
    EXPECT_EQ(cup.labels, (std::vector<int>{1, 0, 2, 0, 1, 1, 0, 0, 0, 1, 0, 1, 1, 1, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(cup.boxes[0].top, 0);
    EXPECT_EQ(cup.boxes[0].bottom, 2);
    EXPECT_EQ(cup.boxes[0].left, 0);
    EXPECT_EQ(cup.boxes[0].right, 4);
    EXPECT_EQ(cup.boxes[1].bottom, 0);
    EXPECT_EQ(cup.boxes[1].left, 2);
    EXPECT_EQ(cup.boxes[1].right, 2);

    EXPECT_EQ(labelled(fromText({"#..", ".#.", "..#"}), 3).boxes.size(), 1u);
    EXPECT_EQ(labelled(fromText({"#.#", "...", "#.#"}), 3).boxes.size(), 4u);
    EXPECT_EQ(labelled({127, 128, 0, 255}, 4).labels, (std::vector<int>{0, 1, 0, 2}));
}

TEST(LabelConnectedRuns, NothingToLabel) {
    const Labelling none = labelled(Bytes(50, 127), 10);
    EXPECT_TRUE(none.boxes.empty());
    EXPECT_EQ(none.labels, std::vector<int>(50, -7));
}

}  // namespace
