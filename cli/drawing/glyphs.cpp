#include "cli/drawing/glyphs.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace zelcli {

namespace {

constexpr int kGlyphWidth = 5;

/// One character: seven rows of five cells each, '#' is ink.
struct Glyph {
    char character;
    const char* cells;
};

// clang-format off
constexpr Glyph kGlyphs[] = {
    {'A', " ### " "#   #" "#   #" "#####" "#   #" "#   #" "#   #"},
    {'B', "#### " "#   #" "#   #" "#### " "#   #" "#   #" "#### "},
    {'C', " ### " "#   #" "#    " "#    " "#    " "#   #" " ### "},
    {'D', "#### " "#   #" "#   #" "#   #" "#   #" "#   #" "#### "},
    {'E', "#####" "#    " "#    " "#### " "#    " "#    " "#####"},
    {'F', "#####" "#    " "#    " "#### " "#    " "#    " "#    "},
    {'G', " ### " "#   #" "#    " "# ###" "#   #" "#   #" " ### "},
    {'H', "#   #" "#   #" "#   #" "#####" "#   #" "#   #" "#   #"},
    {'I', " ### " "  #  " "  #  " "  #  " "  #  " "  #  " " ### "},
    {'J', "  ###" "   # " "   # " "   # " "   # " "#  # " " ##  "},
    {'K', "#   #" "#  # " "# #  " "##   " "# #  " "#  # " "#   #"},
    {'L', "#    " "#    " "#    " "#    " "#    " "#    " "#####"},
    {'M', "#   #" "## ##" "# # #" "# # #" "#   #" "#   #" "#   #"},
    {'N', "#   #" "##  #" "# # #" "#  ##" "#   #" "#   #" "#   #"},
    {'O', " ### " "#   #" "#   #" "#   #" "#   #" "#   #" " ### "},
    {'P', "#### " "#   #" "#   #" "#### " "#    " "#    " "#    "},
    {'Q', " ### " "#   #" "#   #" "#   #" "# # #" "#  # " " ## #"},
    {'R', "#### " "#   #" "#   #" "#### " "# #  " "#  # " "#   #"},
    {'S', " ### " "#   #" "#    " " ### " "    #" "#   #" " ### "},
    {'T', "#####" "  #  " "  #  " "  #  " "  #  " "  #  " "  #  "},
    {'U', "#   #" "#   #" "#   #" "#   #" "#   #" "#   #" " ### "},
    {'V', "#   #" "#   #" "#   #" "#   #" "#   #" " # # " "  #  "},
    {'W', "#   #" "#   #" "#   #" "# # #" "# # #" "## ##" "#   #"},
    {'X', "#   #" "#   #" " # # " "  #  " " # # " "#   #" "#   #"},
    {'Y', "#   #" "#   #" " # # " "  #  " "  #  " "  #  " "  #  "},
    {'Z', "#####" "    #" "   # " "  #  " " #   " "#    " "#####"},
    {'0', " ### " "#   #" "#  ##" "# # #" "##  #" "#   #" " ### "},
    {'1', "  #  " " ##  " "  #  " "  #  " "  #  " "  #  " " ### "},
    {'2', " ### " "#   #" "    #" "  ## " " #   " "#    " "#####"},
    {'3', " ### " "#   #" "    #" "  ## " "    #" "#   #" " ### "},
    {'4', "   # " "  ## " " # # " "#  # " "#####" "   # " "   # "},
    {'5', "#####" "#    " "#### " "    #" "    #" "#   #" " ### "},
    {'6', " ### " "#    " "#    " "#### " "#   #" "#   #" " ### "},
    {'7', "#####" "    #" "   # " "  #  " "  #  " "  #  " "  #  "},
    {'8', " ### " "#   #" "#   #" " ### " "#   #" "#   #" " ### "},
    {'9', " ### " "#   #" "#   #" " ####" "    #" "    #" " ### "},
    {'-', "     " "     " "     " " ### " "     " "     " "     "},
    {'=', "     " "     " "#####" "     " "#####" "     " "     "},
    {'.', "     " "     " "     " "     " "     " " ##  " " ##  "},
    {',', "     " "     " "     " "     " " ##  " "  #  " " #   "},
    {':', "     " " ##  " " ##  " "     " " ##  " " ##  " "     "},
    {'+', "     " "  #  " "  #  " "#####" "  #  " "  #  " "     "},
    {'/', "    #" "    #" "   # " "  #  " " #   " "#    " "#    "},
    {'_', "     " "     " "     " "     " "     " "     " "#####"},
};
// clang-format on

const char* cellsOf(char c) {
    const char capital = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (const Glyph& glyph : kGlyphs)
        if (glyph.character == capital) return glyph.cells;
    return nullptr;
}

/// Fills a square of `size` pixels, cut at the picture's edges.
void fillCell(Image& image, int x0, int y0, int size, const unsigned char (&rgb)[3]) {
    for (int y = std::max(0, y0); y < std::min(image.height, y0 + size); ++y)
        for (int x = std::max(0, x0); x < std::min(image.width, x0 + size); ++x)
            std::memcpy(
                image.rgba.data() + 4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                                         static_cast<std::size_t>(x)),
                rgb, 3);
}

}  // namespace

int textWidth(const std::string& text, int scale) {
    return text.empty() ? 0 : (static_cast<int>(text.size()) * kGlyphAdvance - 1) * scale;
}

void drawText(Image& image, int x, int y, const std::string& text, int scale, const unsigned char (&rgb)[3]) {
    for (const char c : text) {
        if (const char* cells = cellsOf(c))
            for (int i = 0; i < kGlyphWidth * kGlyphHeight; ++i)
                if (cells[i] == '#')
                    fillCell(image, x + i % kGlyphWidth * scale, y + i / kGlyphWidth * scale, scale, rgb);
        x += kGlyphAdvance * scale;
    }
}

}  // namespace zelcli
