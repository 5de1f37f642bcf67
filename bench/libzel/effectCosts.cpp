// What each effect of the C interface costs on drawn portraits, at its defaults: the least time on one and on two
// threads, and the peak of its memory beside the picture. Every effect runs in a process of its own.
// Usage: zel_effect_costs OUT.json MEGAPIXELS... [EFFECT...]
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>
#include <vector>

#include "zel/zel.hpp"

namespace {

/// Runs of each row; the least time counts. Long ones run once less.
constexpr int kRuns = 3;
constexpr double kLongMs = 2000;

struct Scene {
    libzel::Context context;
    libzel::Portrait portrait;
    libzel::Faces faces;
    zel_pixels picture, second, mask, depth;
};

Scene sceneOf(double megapixels) {
    const int width = static_cast<int>(std::lround(std::sqrt(megapixels * 1e6 * 3 / 4))),
              height = width * 4 / 3;
    Scene scene{libzel::createContext(), {}, {}, {}, {}, {}, {}};
    scene.portrait = libzel::made<libzel::Portrait>([&](zel_portrait** out) {
        return zel_draw_portrait(scene.context.get(), width, height, 4, nullptr, 0, out);
    });
    scene.faces = libzel::made<libzel::Faces>(
        [&](zel_faces** out) { return zel_portrait_faces(scene.portrait.get(), out); });
    const auto plane = [&](const char* name, zel_pixels& pixels) {
        libzel::require(zel_portrait_plane(scene.portrait.get(), name, &pixels));
    };
    plane("picture", scene.picture), plane("clean", scene.second);
    plane("brows", scene.mask), plane("person", scene.depth);
    return scene;
}

/// Kilobytes that a line of the process's status tells.
long statusKilobytes(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (word == name + ":") {
            long kilobytes = 0;
            status >> kilobytes;
            return kilobytes;
        }
    return 0;
}

double processorMs() {
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

struct Cost {
    double wallMs = 1e12, processorMs = 1e12;
    long peakKilobytes = 0;
    bool worked = false;
};

Cost costOf(const zel_effect& effect, const Scene& scene, int threads) {
    auto settings = libzel::sized<zel_settings>();
    settings.threads = threads;
    const libzel::Context context = libzel::createContext(&settings);
    libzel::Values values;
    for (std::size_t p = 0; p < effect.parameter_count; ++p)
        if (!effect.parameters[p]->default_value)
            values.set(effect.parameters[p]->name, "0.4" + std::to_string(p));
    auto inputs = libzel::sized<zel_inputs>();
    inputs.values = values.list().data();
    inputs.value_count = values.list().size();
    if (effect.faces != ZEL_NO) inputs.faces = scene.faces.get();
    if (effect.mask == ZEL_REQUIRED || effect.name == std::string("remove-black-circle"))
        inputs.mask = &scene.mask;
    if (effect.second == ZEL_REQUIRED) inputs.second = &scene.second;
    if (effect.depth != ZEL_NO) inputs.depth = &scene.depth;

    const std::size_t bytes = std::size_t{4} * static_cast<std::size_t>(scene.picture.width) *
                              static_cast<std::size_t>(scene.picture.height);
    const auto* const source = static_cast<const unsigned char*>(scene.picture.data);
    std::vector<unsigned char> pixels(source, source + bytes);
    zel_pixels picture = scene.picture;
    picture.data = pixels.data();
    Cost cost;
    for (int run = 0; run < kRuns && !(run > 0 && cost.wallMs > kLongMs); ++run) {
        std::copy_n(source, bytes, pixels.begin());
        malloc_trim(0);
        const long before = statusKilobytes("VmRSS");
        std::ofstream("/proc/self/clear_refs") << "5";  // the peak begins anew
        const double processor = processorMs();
        const auto begin = std::chrono::steady_clock::now();
        if (zel_apply(context.get(), effect.name, &picture, &inputs) != ZEL_OK) {
            std::fprintf(stderr, "%s: %s\n", effect.name, zel_message());
            return {};
        }
        const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - begin;
        cost.wallMs = std::min(cost.wallMs, wall.count());
        cost.processorMs = std::min(cost.processorMs, processorMs() - processor);
        cost.peakKilobytes = std::max(cost.peakKilobytes, statusKilobytes("VmHWM") - before);
    }
    cost.worked = true;
    return cost;
}

/// costOf in a child, whose memory is its own.
Cost measured(const zel_effect& effect, const Scene& scene, int threads) {
    int ends[2];
    if (pipe(ends) != 0) return {};
    const pid_t child = fork();
    if (child == 0) {
        const Cost cost = costOf(effect, scene, threads);
        const bool told = write(ends[1], &cost, sizeof cost) == static_cast<ssize_t>(sizeof cost);
        _exit(told ? 0 : 1);
    }
    close(ends[1]);
    Cost cost;
    if (child < 0 || read(ends[0], &cost, sizeof cost) != static_cast<ssize_t>(sizeof cost)) cost = {};
    close(ends[0]);
    if (child > 0) waitpid(child, nullptr, 0);
    return cost;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: zel_effect_costs OUT.json MEGAPIXELS... [EFFECT...]\n");
        return 2;
    }
    std::vector<double> sizes;
    std::vector<std::string> wanted;  // all where none is named
    for (int i = 2; i < argc; ++i)
        if (const double megapixels = std::atof(argv[i]); megapixels > 0)
            sizes.push_back(megapixels);
        else
            wanted.emplace_back(argv[i]);
    std::ofstream out(argv[1]);
    out << "[";
    const char* comma = "\n";
    for (const double megapixels : sizes) {
        const Scene scene = sceneOf(megapixels);
        const double pixels = static_cast<double>(scene.picture.width) * scene.picture.height;
        for (std::size_t k = 0; const zel_effect* effect = zel_effect_at(k); ++k)
            for (const int threads : {1, 2}) {
                if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), effect->name) == wanted.end())
                    continue;
                const Cost cost = measured(*effect, scene, threads);
                if (!cost.worked) continue;
                out << comma << "{\"effect\": \"" << effect->name << "\", \"megapixels\": " << pixels / 1e6
                    << ", \"threads\": " << threads << ", \"wall_ms\": " << cost.wallMs
                    << ", \"processor_ms\": " << cost.processorMs
                    << ", \"pictures\": " << static_cast<double>(cost.peakKilobytes) * 1024 / (4 * pixels)
                    << "}" << std::flush;
                comma = ",\n";
            }
    }
    out << "\n]\n";
    return out.good() ? 0 : 1;
}
