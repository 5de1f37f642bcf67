#pragma once

#include <cstddef>
#include <utility>

namespace zeltest {

/// Landmarks that change places in a mirrored face; those not named lie on the middle line.
inline constexpr std::pair<std::size_t, std::size_t> kMirrorPairs[] = {
    {1, 10},  {2, 11},  {3, 12},  {4, 13},  {5, 14},  {6, 15},  {7, 16},  {8, 17},  {9, 18},  {19, 65},
    {20, 66}, {21, 71}, {22, 69}, {23, 68}, {24, 70}, {25, 67}, {26, 72}, {27, 74}, {28, 73}, {29, 79},
    {30, 78}, {31, 77}, {32, 76}, {33, 75}, {34, 82}, {35, 81}, {36, 80}, {37, 46}, {39, 42}, {40, 43},
    {41, 44}, {48, 51}, {49, 52}, {50, 53}, {55, 59}, {56, 60}, {57, 61}, {62, 63}};

}  // namespace zeltest
