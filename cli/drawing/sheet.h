#pragma once

#include <string>
#include <vector>

#include "cli/files/image.h"

namespace zelcli {

/// The picture reduced so that it fits the given size, by the mean of the area behind every pixel; never
/// enlarged.
Image reduceToFit(const Image& image, int maxWidth, int maxHeight);

/// One picture of a sheet.
struct SheetCell {
    const Image& picture;
    std::string label;
};

/// Pictures side by side, each in a frame with its label above. Large pictures are reduced to about 1,000
/// pixels across.
Image makeSheet(const std::vector<SheetCell>& cells);

/// Before and after side by side, each in a frame with a label above. Large pictures are reduced so that
/// the sheet is about 2,000 pixels wide; both by the same factor.
Image makeSheet(const Image& before, const Image& after, const std::string& effectLabel);

}  // namespace zelcli
