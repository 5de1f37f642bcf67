#include "gimp/run/effectCall.h"

#include <cctype>

namespace zelgimp {

zel_context* library() {
    static const libzel::Context context = libzel::createContext();
    return context.get();
}

libzel::Values valuesOf(const ValueTexts& texts) {
    libzel::Values values;
    for (const auto& [name, text] : texts) values.set(name, text);
    return values;
}

Rgba EffectCall::run(const Progress& progress) const {
    Rgba result = *picture;
    const libzel::Values given = valuesOf(values);
    auto inputs = libzel::sized<zel_inputs>();
    inputs.values = given.list().data();
    inputs.value_count = given.list().size();
    inputs.faces = faces.get();
    zel_pixels maskPixels, secondPixels, depthPixels;
    const auto give = [](const auto& own, zel_pixels& pixels) {
        if (own) pixels = pixelsOf(*own);
        return own ? &pixels : nullptr;
    };
    inputs.mask = give(mask, maskPixels);
    inputs.second = give(second, secondPixels);
    inputs.depth = give(depth, depthPixels);
    inputs.progress_user = const_cast<Progress*>(&progress);
    inputs.progress = [](void* user, double fraction, const char* stage) {
        return (*static_cast<const Progress*>(user))(fraction, stage) ? 1 : 0;
    };
    const zel_pixels pixels = pixelsOf(result);
    libzel::require(zel_apply(library(), effect->name, &pixels, &inputs));
    return result;
}

std::string sentenceOf(const std::string& message) {
    std::string sentence = message;
    if (sentence.empty()) return sentence;
    // A message that begins with the name of a parameter, a file or an effect keeps it as it is spelled.
    const std::size_t word = sentence.find_first_of(" :,.");
    const bool isPlain = sentence.find_first_of("-_/ABCDEFGHIJKLMNOPQRSTUVWXYZ") >= word;
    if (isPlain) sentence[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(sentence[0])));
    if (sentence.back() != '.') sentence += '.';
    return sentence;
}

}  // namespace zelgimp
