#pragma once

#include "repairTruth.h"

namespace zelmeasure {

/// Fills the masks of every kind of defect with each engine and with the peer's two, and prints how close the
/// filled pixels come to the truth.
void printFills(unsigned firstSeed, int count);

/// Smooths painted wrinkles with both methods and prints what is left of their contrast, and of the texture
/// beside and on them.
void printWrinkles(unsigned firstSeed, int count);

}  // namespace zelmeasure
