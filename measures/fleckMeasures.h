#pragma once

#include "repairTruth.h"

namespace zelmeasure {

/// Cleans portraits with moles and with freckles by both methods of the automatic repair, and prints a table:
/// how many spots are removed, how many repairs meet no spot, what that does to features, and how close the
/// repaired pixels come to the truth beside the peer's.
void printFlecks(unsigned firstSeed, int count);

/// The spots of a layer that count: with all their pixels on the face's skin, and a diameter of at least 1 in
/// 100 of the pupils' distance.
std::vector<Part> countedSpots(const zel::Mask& layer, const zel::Portrait& portrait);

/// For each mole that counts: the first step of either search that lost it. Also tells which of the changed
/// feature pixels the features' polygons leave out.
void printLostMoles(unsigned firstSeed, int count);

}  // namespace zelmeasure
