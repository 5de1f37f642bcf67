#pragma once

#include <optional>
#include <vector>

#include "facepoints/faceData.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/sfdsp/bilinearRows.h"

namespace zellab {

/// Repairs spots in place, where the mask shows skin.
/// @param face      null without a face
/// @param spotMask  plane that receives 255 on repaired cells and 0 elsewhere, or an empty one
void repairSpots(ImageView image, PlaneView<const Byte> mask, const FaceData* face, PlaneView<Byte> spotMask);

/// Spots that are repaired on a small copy and pasted into the full picture row by row.
class SpotPaste {
public:
    /// Repairs the copy where its mask says so. It must outlive the object.
    /// @param width, height  of the full picture
    SpotPaste(ImageView small, PlaneView<const Byte> mask, const FaceData* face, int width, int height);

    /// Room of one thread.
    struct Scratch {
        BilinearRows::Scratch line;
        std::vector<Byte> where, repaired;
    };

    /// Overwrites the pixels of row y that belong to a spot; most rows have none and cost nothing.
    void row(int y, Byte* pixels, Scratch& scratch) const;
    /// All rows, on several threads.
    void apply(ImageView image) const;

private:
    int m_width;
    Plane<Byte> m_spots;
    std::vector<bool> m_rowHasSpots;                  // of the copy
    std::optional<BilinearRows> m_where, m_repaired;  // none without a spot
};

}  // namespace zellab
