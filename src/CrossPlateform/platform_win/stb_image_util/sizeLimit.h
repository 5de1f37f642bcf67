#pragma once

#include "CrossPlateform/platform_win/stb_image_util/imageBuffer.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// The size of a picture whose longer side is limited to maxSize (1 and above): the longer side becomes
/// maxSize, the other other * maxSize / longer in integers, which is 0 for very long pictures. Sizes within
/// the limit stay.
ImageSize limitedSize(ImageSize size, int maxSize);

/// Scales down both sides with the filter of the size limit: positions of a point sampler, blended between
/// two rows and two columns; whole even steps take the mean of two by two pixels. Reads nothing outside
/// `from`. False, the target untouched, where a side is longer than the scaler takes (32768) or there is no
/// memory for one row.
bool scaleToLimit(ConstImageView from, ImageView to);

/// Limits the longer side of the picture to maxSize; 0 and below mean no limit. Replaces `pixels` where it
/// scales. Returns the size that `pixels` then has. Bad sizes, failing allocations and pictures that the
/// scaler does not take leave the pixels as they are, with a line in the log.
ImageSize maxSizeAdjust(ImageBuffer& pixels, ImageSize size, int maxSize);

}  // namespace zellab
