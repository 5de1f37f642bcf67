#pragma once

#include "zellab/imageproc/tone/toneTables.h"

namespace zellab {

/// Three byte tables in the form that sixteen-byte shuffles look up: piece i of a channel holds the entries
/// 16 i to 16 i + 15, combined by exclusive or with the piece before it. A lookup adds up, again by exclusive
/// or, all pieces up to the one that the value falls into, so no piece has to be selected. The chain starts
/// anew at value 128. Each piece lies there twice, once for each half of a register.
struct ShuffleTables {
    static constexpr int kPieces = 16, kPieceBytes = 32;

    explicit ShuffleTables(const ChannelTables& tables);

    alignas(32) Byte pieces[3][kPieces][kPieceBytes];
};

/// Maps the pixels of a row in groups of 32 and returns how many were mapped. Needs AVX2.
int mapRowAvx2(Byte* row, int width, const ShuffleTables& tables);

}  // namespace zellab
