// How well flecks, holes and wrinkles are repaired, on synthetic portraits whose truth is known. Prints the
// tables of docs/measures.md. Usage: zel_repair_measures [FACES] [FIRST-SEED] [flecks|lost|fills|wrinkles]
#include <cstdlib>
#include <string>

#include "fillMeasures.h"
#include "fleckMeasures.h"

int main(int argc, char** argv) {
    const int faces = argc > 1 ? std::atoi(argv[1]) : 50;
    const unsigned firstSeed = argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1;
    const std::string only = argc > 3 ? argv[3] : "";
    const auto wanted = [&](const char* table) { return only.empty() || only == table; };
    if (wanted("flecks")) zelmeasure::printFlecks(firstSeed, faces);
    if (wanted("lost")) zelmeasure::printLostMoles(firstSeed, faces);
    if (wanted("fills")) zelmeasure::printFills(firstSeed, faces);
    if (wanted("wrinkles")) zelmeasure::printWrinkles(firstSeed, faces);
}
