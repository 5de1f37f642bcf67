#pragma once

#include <map>
#include <string>
#include <vector>

#include "libzel/effectRegistry.h"
#include "support/faultOf.h"
#include "support/scratchFolder.h"

namespace zeltest {

/// A picture with shapes and edges; opaque.
inline zel::Image testImage(int width, int height, unsigned seed) {
    zel::Image image{width, height, patternRgba(width, height, seed)};
    for (std::size_t i = 3; i < image.rgba.size(); i += 4) image.rgba[i] = 255;
    return image;
}

/// "NAME=VALUE" words as values of an effect.
inline zel::ParameterValues valuesOf(const zel::Effect& effect, const std::vector<std::string>& words) {
    std::map<std::string, std::string> given;
    for (const std::string& word : words)
        given[word.substr(0, word.find('='))] = word.substr(word.find('=') + 1);
    return zel::checkedValues(effect, given);
}

/// The picture after one effect.
inline zel::Image applied(const std::string& name, zel::Image image, const std::vector<std::string>& words,
                          const zel::FaceSet& faces = {}, const zel::Mask* mask = nullptr,
                          const zel::Image* second = nullptr) {
    const zel::Effect& effect = zel::findEffect(name);
    const zel::ParameterValues values = valuesOf(effect, words);
    zel::EffectRun run{image, faces, mask, second, values, [](const std::string&, double) {}};
    effect.run(run);
    return image;
}

}  // namespace zeltest
