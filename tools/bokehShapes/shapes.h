#pragma once

#include <string>
#include <vector>

namespace zelshapes {

/// A point of a shape: the used square of a frame is -1..1 both ways, x right, y down.
struct Point {
    double x, y;
};

/// A shape of light: its brightness 0..1 at a point of frame 0 (the picture's centre) to 5 (its corner).
/// Frames are drawn for a place right of the picture's centre.
struct Shape {
    std::string name;  // of the file, after "defocus_"
    double (*brightness)(Point p, int frame);
};

const std::vector<Shape>& shapes();

/// The strip of a shape: 1056 by 176 bytes, six frames of 176 by 176 side by side, edges smoothed.
std::vector<unsigned char> drawStrip(const Shape& shape);

}  // namespace zelshapes
