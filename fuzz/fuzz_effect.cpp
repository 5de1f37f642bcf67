// One effect of the C interface, chosen as choices.h tells: small pictures, hostile values, faces, masks and strides.
#include <cstdint>
#include <cstdlib>

#include "interfaceCall.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    zelfuzz::Choices choices(input, size);
    const auto nameAt = [](std::size_t i) { return zel_effect_at(i)->name; };
    const std::size_t chosen = zelfuzz::chosenOf(zel_effect_count(), choices, nameAt);
    static zel_context* const context = [] {
        const zel_settings settings{sizeof settings, ZEL_FUZZ_ASSETS, nullptr, nullptr, 2, ZEL_GL_NEVER};
        zel_context* made = nullptr;
        if (zel_context_create(&settings, &made) != ZEL_OK) std::abort();
        return made;
    }();
    zelfuzz::apply(context, zel_effect_at(chosen), choices);
    return 0;
}
