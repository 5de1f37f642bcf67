#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "portrait/image.h"
#include "zel_effects/zel_records.h"

namespace zelmeasures {

using Point = zellab::Vector2f;

/// What the eye could tell of one face, in pixels of its photograph.
struct MarkedFace {
    std::map<std::size_t, Point> points;    // by number of the landmark
    std::vector<std::vector<Point>> edges;  // lines along cheek and jaw, where they can be seen
    float pupilDistance = 0;                // between the marks, or as it was judged
};

struct MarkedPhotograph {
    std::string name;  // of the file, without its ending
    std::string half;  // "tune" or "held"; "none" where nothing is to be measured
    std::vector<MarkedFace> faces;
    std::vector<std::array<float, 4>> drawn;  // x, y, width, height: a face found there does not count
};

/// A rectangle of a photograph that depth of field should keep sharp, or blur.
struct MarkedPlace {
    std::string what;
    bool sharp = false;
    int x = 0, y = 0, width = 0, height = 0;
};

struct PhotographPlaces {
    std::string name;
    std::vector<MarkedPlace> places;
};

/// Read marks.json and places.json. They throw zel::Failure, which tells where the text is wrong.
std::vector<MarkedPhotograph> readMarks(const std::string& json);
std::vector<PhotographPlaces> readPlaces(const std::string& json);

/// The text of a file. Throws zel::Failure.
std::string readText(const std::string& path);

/// The JPEG or PNG of that name in the folder. Throws zel::Failure.
zel::Image loadPhotograph(const std::string& folder, const std::string& name);

}  // namespace zelmeasures
