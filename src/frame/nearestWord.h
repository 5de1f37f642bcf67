#pragma once

#include <string>
#include <vector>

namespace zellab {

/// The candidate that a mistyped word most likely meant; empty where none is close. Letters left out, added,
/// changed or swapped with their neighbour count one each; up to a third of the word may be wrong.
std::string nearestWord(const std::string& word, const std::vector<std::string>& candidates);

}  // namespace zellab
