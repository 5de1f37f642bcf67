#pragma once

namespace zellab {

/// Selective colour for one pixel: adds the shifts that the percentages c, m and y ask of channels 0 to 2.
/// A percentage of 0 leaves its channel; the amounts follow the pixel's distance from grey and, in light
/// tones, how much room the channel has left.
/// @param pixel           three or more bytes
/// @param low, mid, high  the pixel's channel values in rising order
/// @param shift           three sums, added to

/// Acts only where byte 0 is above bytes 1 and 2; the weight is high - mid.
void SelectiveColorReds(const unsigned char* pixel, int low, int mid, int high, int* shift, int c, int m,
                        int y);

/// Acts only where byte 2 is below bytes 0 and 1; the weight is mid - low.
void SelectiveColorYellows(const unsigned char* pixel, int low, int mid, int high, int* shift, int c, int m,
                           int y);

}  // namespace zellab
