#pragma once

#include <atomic>
#include <future>
#include <vector>

#include "bokeh/kernelStrip.h"
#include "bokeh/lookParameters.h"
#include "bokeh/tileGrid.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab::Bokeh {

/// What the processor's share of a convolution reads; all of it must outlive the chore.
struct ConvolutionSource {
    ConstImageView image;          // the small working picture
    PlaneView<const Byte> radius;  // one a pixel; no plane: `maximumRadius` everywhere
    int maximumRadius = 0;         // working pixels
    StripView kernel;              // the shape, of isKernelStrip
    PlaneView<const Byte> spin;    // record of each pixel; no plane: no spin
    LookValues look{};
};

/// A finished tile: RGBA rows without gaps.
struct CpuTile {
    Tile place;
    std::vector<Byte> pixels;
};

/// Starts the asynchronous chore that claims tile numbers from `next` until there are none left and computes
/// each on the processor. It alone owns the list until the future is read.
/// @return a future that is not valid where no thread can be had; no tile is claimed then
std::future<std::vector<CpuTile>> startTileChore(const ConvolutionSource& source, std::atomic<int>& next);

/// The chore's work, on the calling thread and its team.
std::vector<CpuTile> computeTiles(const ConvolutionSource& source, std::atomic<int>& next, int workers);

/// The whole convolution at once, into a picture of the source's size that does not overlap it.
void convolvePicture(const ConvolutionSource& source, const ImageView& target);

}  // namespace zellab::Bokeh
