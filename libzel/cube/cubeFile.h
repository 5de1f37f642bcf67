#pragma once

#include <array>
#include <iosfwd>
#include <string>
#include <vector>

namespace zel {

/// A 3-D colour lookup as the field's .cube text files hold it.
struct CubeFile {
    std::string title;
    int size = 0;                                                 // steps an axis
    std::array<float, 3> domainMin{0, 0, 0}, domainMax{1, 1, 1};  // of red, green, blue
    std::vector<float> samples;                                   // size^3 colours, red fastest, blue slowest
};

/// Reads TITLE, LUT_3D_SIZE (2 to 256), DOMAIN_MIN, DOMAIN_MAX or LUT_3D_INPUT_RANGE, comments and the
/// colours; words in capitals that it does not know are skipped.
/// Throws Failure with the line's number where the text is no such table.
CubeFile readCube(std::istream& text);

/// The same from a regular file; Failure with the reason where it cannot be read.
CubeFile readCubeFile(const std::string& path);

/// The same from a file that a host names: the Failure is ZEL_BAD_FILE and begins with the path.
CubeFile readGivenCube(const std::string& path);

/// The lookup as the library takes it: 64 by 64 RGBA texels, 16 steps an axis, display-coded. Trilinear
/// between the file's steps; inputs outside its domain take the nearest colour inside, results are limited
/// to 0..1.
std::vector<unsigned char> cubePicture(const CubeFile& cube);

}  // namespace zel
