#pragma once

#include <string>

#include "cli/files/image.h"

namespace zelcli {

/// Pixel size of a character cell at scale 1, with the gap to the next character.
constexpr int kGlyphAdvance = 6, kGlyphHeight = 7;

/// Width in pixels of a text at a scale.
int textWidth(const std::string& text, int scale);

/// Writes a text in capital letters with its top left corner at (x, y), in the given colour. Characters
/// that the small built-in alphabet lacks stay blank; what lies outside the picture is cut off.
void drawText(Image& image, int x, int y, const std::string& text, int scale, const unsigned char (&rgb)[3]);

}  // namespace zelcli
