#include "zellab/imageproc/tone/toneTables.h"

#include "platform/simdLevel.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/tone/toneTablesAvx2.h"

namespace zellab {

namespace {

void mapRow(Byte* row, int width, const ChannelTables& tables) {
    for (int x = 0; x < width; ++x, row += 4) {
        row[0] = tables.red[row[0]];
        row[1] = tables.green[row[1]];
        row[2] = tables.blue[row[2]];
    }
}

}  // namespace

void mapPixels(ImageView image, const ChannelTables& tables) {
    if (platform::simdLevel() != platform::SimdLevel::avx2) {
        parallelRows(image.height, [&](int begin, int end) {
            for (int y = begin; y < end; ++y) mapRow(image.row(y), image.width, tables);
        });
        return;
    }
    const ShuffleTables shuffles(tables);
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            const int done = mapRowAvx2(image.row(y), image.width, shuffles);
            mapRow(image.row(y) + std::ptrdiff_t{4} * done, image.width - done, tables);
        }
    });
}

void mapPlane(PlaneView<Byte> plane, const ByteTable& table) {
    parallelRows(plane.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            Byte* const row = plane.row(y);
            for (int x = 0; x < plane.width; ++x) row[x] = table[row[x]];
        }
    });
}

}  // namespace zellab
