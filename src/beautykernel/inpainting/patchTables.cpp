#include "beautykernel/inpainting/patchTables.h"

#include <algorithm>
#include <cmath>

namespace zellab {

const std::array<CellOffset, 99> kNeighbourOffsets = {
    {{0, -1},  {-1, 0}, {0, 1},   {1, 0},  {-1, 1},  {1, 1},   {1, -1},  {-1, -1}, {0, 2},   {-2, 0},
     {2, 0},   {0, -2}, {-1, 2},  {2, -1}, {1, -2},  {-1, -2}, {-2, 1},  {-2, -1}, {1, 2},   {2, 1},
     {2, 2},   {-2, 2}, {-2, -2}, {2, -2}, {-3, 0},  {0, -3},  {3, 0},   {0, 3},   {3, -1},  {-3, 1},
     {1, -3},  {-1, 3}, {-3, -1}, {3, 1},  {1, 3},   {-1, -3}, {-3, -2}, {-2, -3}, {-2, 3},  {-3, 2},
     {2, 3},   {2, -3}, {3, -2},  {3, 2},  {-4, 0},  {0, 4},   {0, -4},  {4, 0},   {-4, -1}, {-1, -4},
     {-1, 4},  {4, -1}, {-4, 1},  {1, 4},  {1, -4},  {4, 1},   {-3, -3}, {3, 3},   {3, -3},  {-3, 3},
     {-4, 2},  {2, -4}, {-2, 4},  {4, 2},  {-4, -2}, {4, -2},  {2, 4},   {-2, -4}, {-4, 3},  {4, -3},
     {-5, 0},  {-3, 4}, {-4, -3}, {3, -4}, {0, 5},   {3, 4},   {-3, -4}, {0, -5},  {5, 0},   {4, 3},
     {-5, -1}, {5, -1}, {-5, 1},  {-1, 5}, {1, 5},   {-1, -5}, {5, 1},   {1, -5},  {-5, -2}, {-5, 2},
     {2, -5},  {5, 2},  {2, 5},   {5, -2}, {-2, 5},  {-2, -5}, {4, -4},  {-4, 4},  {4, 4}}};

const std::array<std::int32_t, 512>& colourCost() {
    static const std::array<std::int32_t, 512> kCost = [] {
        constexpr double kWidth = 0.117;
        const auto robust = [](double difference) {
            return std::log(std::pow(difference / kWidth, 2) + 1.0);
        };
        std::array<std::int32_t, 512> cost{};
        for (std::size_t i = 0; i < cost.size(); ++i) {
            const double difference = (static_cast<double>(i) - 256.0) / 256.0;
            cost[i] = std::min(static_cast<std::int32_t>(robust(difference) / robust(1.0) * 65536.0), 65535);
        }
        return cost;
    }();
    return kCost;
}

}  // namespace zellab
