#pragma once

#include <cstdint>

namespace zel::drawing {

/// Smooth random field with features of size 1, -1 to 1.
float smoothNoise(float x, float y, std::uint32_t seed);

/// Sum of `octaves` smooth fields, each half as large and half as strong as the one before; about -1 to 1.
float cloudNoise(float x, float y, int octaves, std::uint32_t seed);

/// Distance to the nearest of scattered points, one to each unit square; 0 at a point to about 1 between
/// them.
float cellNoise(float x, float y, std::uint32_t seed);

/// How much of a feature of that size a pixel of `pixelSize` still shows: 1 well above it, 0 below.
float visibleShare(float featureSize, float pixelSize);

}  // namespace zel::drawing
