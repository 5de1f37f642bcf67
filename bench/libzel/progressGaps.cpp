// How long a host waits between two questions whether to go on: the longest time of each effect on a drawn portrait,
// at its defaults. docs/embedding.md holds what this prints.
// Usage: zel_progress_gaps [WIDTH HEIGHT]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "zel/zel.hpp"

namespace {

using Clock = std::chrono::steady_clock;

/// The longest time between two of its calls, the call's beginning and end among them.
struct Gaps {
    Clock::time_point last = Clock::now();
    double longest = 0;
    int asks = 0;

    void mark() {
        const auto now = Clock::now();
        longest = std::max(longest, std::chrono::duration<double, std::milli>(now - last).count());
        last = now;
    }
    static int ask(void* user, double, const char*) {
        auto& own = *static_cast<Gaps*>(user);
        own.mark();
        ++own.asks;
        return 0;
    }
};

}  // namespace

int main(int argc, char** argv) {
    const int width = argc > 2 ? std::atoi(argv[1]) : 3000, height = argc > 2 ? std::atoi(argv[2]) : 4000;
    const libzel::Context context = libzel::createContext();
    const auto portrait = libzel::made<libzel::Portrait>([&](zel_portrait** out) {
        return zel_draw_portrait(context.get(), width, height, 4, nullptr, 0, out);
    });
    const auto faces =
        libzel::made<libzel::Faces>([&](zel_faces** out) { return zel_portrait_faces(portrait.get(), out); });
    const auto plane = [&](const char* name) {
        zel_pixels pixels;
        libzel::require(zel_portrait_plane(portrait.get(), name, &pixels));
        return pixels;
    };
    const zel_pixels picture = plane("picture"), second = plane("clean"), mask = plane("brows"),
                     depth = plane("person");
    std::printf("| effect | asks | longest gap, ms |\n|---|---|---|\n");
    for (std::size_t i = 0; const zel_effect* effect = zel_effect_at(i); ++i) {
        libzel::Values values;
        for (std::size_t p = 0; p < effect->parameter_count; ++p)
            if (!effect->parameters[p]->default_value)
                values.set(effect->parameters[p]->name, "0.4" + std::to_string(p));
        auto inputs = libzel::sized<zel_inputs>();
        inputs.values = values.list().data();
        inputs.value_count = values.list().size();
        if (effect->faces != ZEL_NO) inputs.faces = faces.get();
        if (effect->mask == ZEL_REQUIRED || effect->name == std::string("remove-black-circle"))
            inputs.mask = &mask;
        if (effect->second == ZEL_REQUIRED) inputs.second = &second;
        if (effect->depth != ZEL_NO) inputs.depth = &depth;
        Gaps gaps;
        inputs.progress = Gaps::ask;
        inputs.progress_user = &gaps;
        gaps.last = Clock::now();
        const zel_status status = zel_apply(context.get(), effect->name, &picture, &inputs);
        gaps.mark();
        if (status == ZEL_OK)
            std::printf("| %s | %d | %.0f |\n", effect->name, gaps.asks, gaps.longest);
        else
            std::printf("| %s | | %s |\n", effect->name, zel_message());
        std::fflush(stdout);
    }
}
