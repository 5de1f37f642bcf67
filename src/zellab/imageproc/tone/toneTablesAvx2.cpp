#include "zellab/imageproc/tone/toneTablesAvx2.h"

#include "zellab/imageproc/core/rgbaPlanesAvx2.h"

namespace zellab {

ShuffleTables::ShuffleTables(const ChannelTables& tables) {
    const Byte* const channels[3] = {tables.red.data(), tables.green.data(), tables.blue.data()};
    for (int c = 0; c < 3; ++c)
        for (int piece = 0; piece < kPieces; ++piece)
            for (int i = 0; i < 16; ++i) {
                const bool chainStart = piece % (kPieces / 2) == 0;
                const int entry = 16 * piece + i;
                const Byte value =
                    static_cast<Byte>(channels[c][entry] ^ (chainStart ? 0 : channels[c][entry - 16]));
                pieces[c][piece][i] = pieces[c][piece][16 + i] = value;
            }
}

namespace {

/// Looks 32 values up. A shuffle gives 0 where the index has its top bit set; the saturating subtraction
/// keeps it set from the piece after the value's own on.
ZEL_TARGET_AVX2 inline __m256i lookUp(__m256i values, const Byte (*pieces)[ShuffleTables::kPieceBytes]) {
    const __m256i step = _mm256_set1_epi8(16);
    __m256i low = values, high = _mm256_xor_si256(values, _mm256_set1_epi8(-128));
    __m256i result = _mm256_setzero_si256();
    for (int i = 0; i < ShuffleTables::kPieces / 2; ++i) {
        const __m256i lowPiece = _mm256_load_si256(reinterpret_cast<const __m256i*>(pieces[i]));
        const __m256i highPiece =
            _mm256_load_si256(reinterpret_cast<const __m256i*>(pieces[i + ShuffleTables::kPieces / 2]));
        result = _mm256_xor_si256(result, _mm256_xor_si256(_mm256_shuffle_epi8(lowPiece, low),
                                                           _mm256_shuffle_epi8(highPiece, high)));
        low = _mm256_subs_epi8(low, step);
        high = _mm256_subs_epi8(high, step);
    }
    return result;
}

}  // namespace

ZEL_TARGET_AVX2 int mapRowAvx2(Byte* row, int width, const ShuffleTables& tables) {
    int x = 0;
    for (; x <= width - avx2::kPlanePixels; x += avx2::kPlanePixels) {
        Byte* const pixels = row + std::ptrdiff_t{4} * x;
        avx2::PixelPlanes planes = avx2::loadPlanes(pixels);
        planes.red = lookUp(planes.red, tables.pieces[0]);
        planes.green = lookUp(planes.green, tables.pieces[1]);
        planes.blue = lookUp(planes.blue, tables.pieces[2]);
        avx2::storePlanes(pixels, planes);
    }
    return x;
}

}  // namespace zellab
