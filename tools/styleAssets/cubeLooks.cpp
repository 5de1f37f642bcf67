#include "cubeLooks.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>

#include "look.h"

namespace zelassets {

namespace {

constexpr int kSteps = 16;  // an axis: what the library's own cube holds

struct NamedLook {
    const char* name;
    Look look;
};

/// Set by eye on portraits of every skin tone: skin keeps its own colour, only its light changes.
constexpr std::array<NamedLook, 7> kLooks = {{
    {"identity", {}},
    {"warm",
     {.lift = 0.02f,
      .contrast = 0.06f,
      .warmth = 0.025f,
      .rose = 0.0f,
      .saturation = 0.04f,
      .matte = 0.0f,
      .guard = 1.0f}},
    {"cool",
     {.lift = 0.01f,
      .contrast = 0.08f,
      .warmth = -0.022f,
      .rose = 0.0f,
      .saturation = -0.04f,
      .matte = 0.0f,
      .guard = 1.0f}},
    {"clear",
     {.lift = 0.02f,
      .contrast = 0.22f,
      .warmth = 0.0f,
      .rose = 0.0f,
      .saturation = 0.10f,
      .matte = 0.0f,
      .guard = 1.0f}},
    {"soft",
     {.lift = 0.05f,
      .contrast = -0.12f,
      .warmth = 0.006f,
      .rose = 0.004f,
      .saturation = -0.06f,
      .matte = 0.015f,
      .guard = 0.0f}},
    {"film",
     {.lift = 0.0f,
      .contrast = 0.18f,
      .warmth = 0.016f,
      .rose = -0.004f,
      .saturation = -0.14f,
      .matte = 0.04f,
      .guard = 1.0f}},
    {"mono",
     {.lift = 0.0f,
      .contrast = 0.2f,
      .warmth = 0.0f,
      .rose = 0.0f,
      .saturation = -1.0f,
      .matte = 0.0f,
      .guard = 1.0f}},
}};

void writeCube(const std::filesystem::path& path, const NamedLook& named) {
    std::ofstream out(path, std::ios::trunc);
    out << "TITLE \"" << named.name << "\"\nLUT_3D_SIZE " << kSteps << '\n';
    const auto level = [](int step) { return static_cast<float>(step) / (kSteps - 1); };
    for (int blue = 0; blue < kSteps; ++blue)
        for (int green = 0; green < kSteps; ++green)
            for (int red = 0; red < kSteps; ++red) {
                const Colour c = graded({level(red), level(green), level(blue)}, named.look);
                std::array<char, 64> line;
                std::snprintf(line.data(), line.size(), "%.6f %.6f %.6f\n", static_cast<double>(c[0]),
                              static_cast<double>(c[1]), static_cast<double>(c[2]));
                out << line.data();
            }
    out.close();
    if (!out) throw std::runtime_error(path.string() + " cannot be written");
}

}  // namespace

void writeCubeLooks(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    for (const NamedLook& named : kLooks) writeCube(folder / (std::string(named.name) + ".cube"), named);
}

}  // namespace zelassets
