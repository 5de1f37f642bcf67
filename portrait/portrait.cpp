#include "portrait.h"

#include <stdexcept>

#include "composer.h"
#include "rowWorkers.h"

namespace zel {

namespace {

Mask emptyMask(int width, int height) {
    return {width, height,
            std::vector<unsigned char>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height))};
}

Image emptyImage(int width, int height) {
    Image image;
    image.width = width;
    image.height = height;
    image.rgba.resize(std::size_t{4} * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    return image;
}

void layOut(Portrait& portrait, int width, int height) {
    portrait.image = emptyImage(width, height);
    portrait.clean = emptyImage(width, height);
    for (Mask* mask : {&portrait.person, &portrait.hair, &portrait.skin, &portrait.face, &portrait.eyes,
                       &portrait.iris, &portrait.brows, &portrait.lips, &portrait.moles, &portrait.freckles,
                       &portrait.wrinkles, &portrait.darkCircles, &portrait.dullSkin, &portrait.scratches})
        *mask = emptyMask(width, height);
    portrait.depth.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
}

}  // namespace

Portrait drawPortrait(const PortraitParams& params) {
    constexpr int kLargest = 16384;
    if (params.width < 1 || params.height < 1 || params.width > kLargest || params.height > kLargest)
        throw std::invalid_argument("a portrait's sides are 1 to 16384 pixels long");
    Portrait portrait;
    layOut(portrait, params.width, params.height);
    const drawing::Composer composer(params);
    composer.measure(portrait);
    drawing::forRowBands(params.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < params.width; ++x) composer.compose(x, y, portrait);
    });
    composer.listMoles(portrait);
    return portrait;
}

}  // namespace zel
