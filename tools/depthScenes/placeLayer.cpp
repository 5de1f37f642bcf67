#include "layer.h"
#include "place.h"
#include "solidMath.h"

namespace zeldepth {

using namespace zel::drawing;

Planes renderPlace(unsigned seed) {
    RandomSource random(seed, 2);
    const Place place(random);
    Planes planes(kPlacePlanes);
    const float sine = sineOf(place.pitch()), cosine = cosineOf(place.pitch());
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
            const std::size_t i = static_cast<std::size_t>(y) * kSide + static_cast<std::size_t>(x);
            Colour sum;
            float nearness = 0;
            // Two rays a pixel take the worst off the edges; the first tells the depth.
            for (const float shift : {0.25f, 0.75f}) {
                const Vec3 through{((static_cast<float>(x) + shift) / kSide - 0.5f) * place.view(),
                                   ((static_cast<float>(y) + 1 - shift) / kSide - 0.5f) * place.view(), 1};
                const Vec3 direction = turnedX(normalized(through), sine, cosine);
                float along = 0;
                sum = sum + place.colourSeen({0, 0, 0}, direction, along) * 0.5f;
                const float depth = along / lengthOf(through);
                if (shift < 0.5f && along < kNever) nearness = std::min(1.0f, kNearestMetres / depth);
            }
            planes.setColour(i, sum);
            const auto word = static_cast<unsigned>(nearness * 65535 + 0.5f);
            planes.plane(3)[i] = static_cast<unsigned char>(word >> 8);
            planes.plane(4)[i] = static_cast<unsigned char>(word & 255u);
        }
    return planes;
}

}  // namespace zeldepth
