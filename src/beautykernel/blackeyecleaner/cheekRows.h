#pragma once

#include "beautykernel/blackeyecleaner/eyeRegion.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

/// For each column of the crop the blurred colour of the cheek below: the row under the left eye up to the
/// middle between the eyes, the row under the right eye behind it.
class CheekRows {
public:
    CheekRows(ConstImageView image, const EyeRegion& region);

    const Byte* colour(int column) const { return m_colours.view().at(column, 0); }

private:
    RgbaImage m_colours;  // one row
};

}  // namespace zellab
