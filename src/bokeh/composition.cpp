#include "bokeh/composition.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <vector>

#include "bokeh/compositionPlaces.h"
#include "bokeh/compositionTaps.h"
#include "bokeh/hairRows.h"
#include "bokeh/passTables.h"
#include "bokeh/radiusBounds.h"
#include "bokeh/weightedRows.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab::Bokeh {

namespace {

/// The size of a photograph of 12 megapixels that the small blur's distances are made for, pixels.
constexpr float kUsualShortSide = 3024.0f;
constexpr float kRadiusTapStep = 3.0f;  // pixels of such a photograph
constexpr float kSmallReachOfRadius = 0.5f, kLargestSmallReach = 4.0f;

/// Colours in whole numbers: a level is 1 << kFineBits.
constexpr int kFineBits = kWeightBits + kLevelBits;
constexpr float kFine = 1.0f / (1 << kFineBits);
/// Four values a pixel; the fourth has no meaning.
struct FineRun {
    alignas(16) std::int32_t pixels[kRun][4];
};

float smoothstep(float from, float to, float value) {
    const float t = std::clamp((value - from) / (to - from), 0.0f, 1.0f);
    return t * t * (3.0f - 2.0f * t);
}

/// How much a working pixel of that radius may stand for one of this: nothing if it is much sharper, and all of
/// it from kAlike on.
constexpr float kUnlike = 0.25f, kAlike = 0.75f;
float blurredAlike(float theirs, float radius) {
    return smoothstep(kUnlike, kAlike, theirs / std::max(radius, 1.0f));
}

/// Place in a row of that many pixels that repeats itself mirrored.
int mirrored(int place, int count) {
    const int period = 2 * count, i = (place % period + period) % period;
    return i < count ? i : period - 1 - i;
}

/// What all rows share.
struct Shared {
    explicit Shared(const CompositionSource& from)
        : source(from),
          ratio(static_cast<float>(std::min(from.photograph.width, from.photograph.height)) /
                kUsualShortSide),
          smallAlone(0.5f * from.smallBlurRadius),
          softAlone(1.5f * from.smallBlurRadius),
          columns(from.photograph.width, from.radius.width, radiusSpacing(), smallSpacing()),
          rows(from.photograph.height, from.radius.height, radiusSpacing(), smallSpacing()),
          bounds(boundsAround(from.radius, std::max(columns.reach(), rows.reach()))),
          taps(compositionTaps(platform::simdLevel())) {
        if (from.hair.valid()) hair.emplace(from.hair, from.photograph.width, from.photograph.height);
    }
    float radiusSpacing() const { return std::max(kRadiusTapStep * ratio, source.scaleRatio); }
    float smallSpacing() const { return std::max(ratio, 1.0f); }

    const CompositionSource& source;
    float ratio;
    float smallAlone,
        softAlone;  // radii up to which the small blur serves alone, and from which it doesn't, pixels
    CompositionAxis columns, rows;
    RadiusBounds bounds;
    CompositionTaps taps;
    std::optional<HairRows> hair;
};

/// Draws rows, one after the other.
class RowComposer {
public:
    explicit RowComposer(const Shared& shared)
        : m_shared(shared),
          m_source(shared.source),
          m_width(shared.source.photograph.width),
          m_soft(sampleCount(shared.source.soft.width + 2, 4)),
          m_grain(sampleCount(shared.source.grain->across + 2, 8)),
          m_margin(shared.columns.farthest() + 1),
          m_colours(sampleCount(kRun + 2 * m_margin, 2 * 4)),
          m_line(sampleCount(kRun + 2 * m_margin, 3)) {}

    void compose(int y, Byte* target) {
        m_y = y;
        m_softReady = m_grainReady = false;
        for (int x = 0; x < m_width; x += kRun) composeRun(x, std::min(m_width - x, kRun), target + at(x));
        if (m_shared.hair) m_shared.hair->blend(y, m_source.photograph.row(y), target);
    }

private:
    /// Of the pixels of a run, where they are not all alike.
    struct Mixed {
        float radius[kRun], share[kRun];           // share: of the soft picture
        float red[kRun], green[kRun], blue[kRun];  // levels
        float gain[kRun];                          // of the grain
    };

    static std::ptrdiff_t at(int x) { return std::ptrdiff_t{4} * x; }
    const Byte* photograph() const { return m_source.photograph.row(m_y); }

    void composeRun(int x, int count, Byte* target);
    void softRun(int x, int count, Byte* target);
    void mixedRun(int x, int count, bool level, Byte* target);

    void findRadii(int x, Mixed& run);
    void addSmall(int x, int count, bool level, Mixed& run);
    void addSoft(int x, int count, Mixed& run);
    void softColour(int x, float radius, float* colour) const;
    void softSum(int x, int reach, float radius, float* sum) const;

    void prepareSoft();
    void prepareGrain();
    void fineSoft(int x, int count, FineRun& run);
    void fineNoise(int x, int count, FineRun& run);

    const Byte* coloursAt(int x, int y, Byte* scratch) const;
    void prepareLine(int x, const CompositionAxis::Tap& down);
    ColourLine lineAt(int shift) const;
    void radiiAt(const std::vector<int>& places, int row, int x, Byte* radii) const;

    const Shared& m_shared;
    const CompositionSource& m_source;
    int m_width, m_y = 0;
    bool m_softReady = false, m_grainReady = false;
    std::vector<std::int16_t>
        m_soft;  // this row of the soft picture between its rows, from working pixel -1 on
    std::vector<std::int16_t> m_grain;  // this row's strengths, from cell -1 on
    int m_margin;                       // pixels of the line below before and behind a run
    std::vector<Byte> m_colours;        // room for two rows of the photograph
    std::vector<float> m_line;          // colours beside the run, in a row or between two
};

void RowComposer::composeRun(int x, int count, Byte* target) {
    const std::vector<int>& places = m_shared.columns.places();
    const int row = m_shared.rows.places()[static_cast<std::size_t>(m_y)];
    const int first = places[static_cast<std::size_t>(x)];
    const int last = places[static_cast<std::size_t>(x + count - 1)];
    const Byte *leastRow = m_shared.bounds.least.row(row), *mostRow = m_shared.bounds.most.row(row);
    Byte least = 255, most = 0;
    for (int i = first; i <= last; ++i) {
        least = std::min(least, leastRow[i]);
        most = std::max(most, mostRow[i]);
    }
    // Whatever the radius is in between, it changes nothing there.
    if (most == 0)
        std::memcpy(target, photograph() + at(x), static_cast<std::size_t>(at(count)));
    else if (static_cast<float>(least) >= m_shared.softAlone &&
             static_cast<float>(least) >= kAlike * static_cast<float>(most))
        softRun(x, count, target);
    else
        mixedRun(x, count, least == most, target);
}

void RowComposer::prepareSoft() {
    if (m_softReady) return;
    const ConstImageView& soft = m_source.soft;
    const CompositionAxis& rows = m_shared.rows;
    const Byte* const both[2] = {soft.row(mirrored(rows.corner(m_y), soft.height)),
                                 soft.row(mirrored(rows.corner(m_y) + 1, soft.height))};
    std::int16_t* const first = m_soft.data() + 4;
    sumRows(both, 2, rows.weights(m_y), 4 * soft.width, first);
    std::copy_n(first, 4, m_soft.data());
    std::copy_n(first + at(soft.width - 1), 4, first + at(soft.width));
    m_softReady = true;
}

/// The strengths between the rows of cells, each colour's beside the brightness's, as its products with the noise
/// want them: a sixteenth of what a level of noise is in fine steps over eight.
void RowComposer::prepareGrain() {
    if (m_grainReady) return;
    const GrainMap& map = *m_source.grain;
    constexpr float kScale = NoiseTile::kUnit * 255.0f * (1 << (kFineBits - 7));
    constexpr int kSide = GrainMap::kCellSide;
    const int before = (2 * m_y + 1 - kSide + 2 * kSide) / (2 * kSide) - 1;  // rounded down
    const float part =
        static_cast<float>(2 * m_y + 1 - kSide - 2 * kSide * before) / static_cast<float>(2 * kSide);
    const int upper = std::max(before, 0), lower = std::min(before + 1, map.down - 1);
    for (int cell = -1; cell <= map.across; ++cell) {
        const int x = std::clamp(cell, 0, map.across - 1);
        const float *a = map.at(x, upper), *b = map.at(x, lower);
        const auto strength = [&](int c) {
            return static_cast<std::int16_t>((a[c] + (b[c] - a[c]) * part) * kScale + 0.5f);
        };
        const std::int16_t brightness = strength(3);
        const std::int16_t pairs[8] = {strength(0), brightness, strength(1), brightness,
                                       strength(2), brightness, 0,           0};
        std::copy_n(pairs, 8, m_grain.data() + std::ptrdiff_t{8} * (cell + 1));
    }
    m_grainReady = true;
}

/// Four pixels of the soft picture between its pixels, in fine steps.
inline __m128i fineSoftPixel(const std::int16_t* row, const CompositionAxis& columns, int x) {
    const __m128i two =
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + std::ptrdiff_t{4} * (columns.corner(x) + 1)));
    return _mm_madd_epi16(_mm_unpacklo_epi16(two, _mm_srli_si128(two, 8)), pairOfWeights(columns.weights(x)));
}

/// Walks along a row's grain.
class GrainWalk {
public:
    GrainWalk(const std::int16_t* strengths, const std::int16_t* noise, int x)
        : m_strengths(strengths),
          m_noise(noise + std::ptrdiff_t{NoiseTile::kValues} * (x % NoiseTile::kWidth)),
          m_x(x) {
        enterCell();
    }
    /// This pixel's grain in fine steps, then on to the next.
    __m128i next() {
        const __m128i noise = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(m_noise));
        const __m128i pairs = _mm_unpacklo_epi16(noise, _mm_shufflelo_epi16(noise, _MM_SHUFFLE(3, 3, 3, 3)));
        const __m128i grain = _mm_slli_epi32(_mm_madd_epi16(pairs, m_strength), 3);
        m_noise += NoiseTile::kValues;
        m_strength = _mm_add_epi16(m_strength, m_step);
        if (++m_x % kSide == kSide / 2) enterCell();
        return grain;
    }

private:
    static constexpr int kSide = GrainMap::kCellSide;

    /// Sixteen times the strength, which takes odd sixteenths of the way between two cells.
    void enterCell() {
        const int cell = (m_x + kSide / 2) / kSide, sixteenths = 2 * ((m_x + kSide / 2) % kSide) + 1;
        const auto* const both = reinterpret_cast<const __m128i*>(m_strengths + std::ptrdiff_t{8} * cell);
        const __m128i from = _mm_loadu_si128(both), way = _mm_sub_epi16(_mm_loadu_si128(both + 1), from);
        m_strength = _mm_add_epi16(_mm_slli_epi16(from, 4),
                                   _mm_mullo_epi16(way, _mm_set1_epi16(static_cast<short>(sixteenths))));
        m_step = _mm_slli_epi16(way, 1);
    }

    const std::int16_t *m_strengths, *m_noise;
    int m_x;
    __m128i m_strength, m_step;
};

/// The run lies in the working picture alone.
void RowComposer::softRun(int x, int count, Byte* target) {
    prepareSoft();
    prepareGrain();
    GrainWalk grain(m_grain.data(), m_source.noise->row(m_y), x);
    const __m128i half = _mm_set1_epi32(1 << (kFineBits - 1));
    const Byte* const origin = photograph() + at(x);
    for (int i = 0; i < count; ++i) {
        const __m128i fine = _mm_add_epi32(
            _mm_add_epi32(fineSoftPixel(m_soft.data(), m_shared.columns, x + i), grain.next()), half);
        const __m128i levels = _mm_packs_epi32(_mm_srai_epi32(fine, kFineBits), _mm_setzero_si128());
        const int pixel = _mm_cvtsi128_si32(_mm_packus_epi16(levels, levels));
        std::memcpy(target + at(i), &pixel, 3);
        target[at(i) + 3] = origin[at(i) + 3];
    }
}

void RowComposer::fineSoft(int x, int count, FineRun& run) {
    prepareSoft();
    for (int i = 0; i < count; ++i)
        _mm_store_si128(reinterpret_cast<__m128i*>(run.pixels[i]),
                        fineSoftPixel(m_soft.data(), m_shared.columns, x + i));
}

void RowComposer::fineNoise(int x, int count, FineRun& run) {
    prepareGrain();
    GrainWalk grain(m_grain.data(), m_source.noise->row(m_y), x);
    for (int i = 0; i < count; ++i) _mm_store_si128(reinterpret_cast<__m128i*>(run.pixels[i]), grain.next());
}

/// A run of the photograph's row y with its margins; beyond the photograph its last pixels go on.
const Byte* RowComposer::coloursAt(int x, int y, Byte* scratch) const {
    const Byte* const row = m_source.photograph.row(std::clamp(y, 0, m_source.photograph.height - 1));
    const int first = x - m_margin, count = kRun + 2 * m_margin;
    if (first >= 0 && first + count <= m_width) return row + at(first);
    for (int i = 0; i < count; ++i)
        std::memcpy(scratch + at(i), row + at(std::clamp(first + i, 0, m_width - 1)), 4);
    return scratch;
}

void RowComposer::prepareLine(int x, const CompositionAxis::Tap& down) {
    const int count = kRun + 2 * m_margin;
    Byte* const scratch = m_colours.data();
    float* const lines[3] = {m_line.data(), m_line.data() + count, m_line.data() + std::ptrdiff_t{2} * count};
    m_shared.taps.line(coloursAt(x, m_y + down.shift, scratch),
                       coloursAt(x, m_y + down.shift + 1, scratch + at(count)), down.part, count, lines);
}

ColourLine RowComposer::lineAt(int shift) const {
    const std::ptrdiff_t count = kRun + 2 * m_margin;
    const float* const red = m_line.data() + m_margin + shift;
    return {red, red + count, red + 2 * count};
}

void RowComposer::radiiAt(const std::vector<int>& places, int row, int x, Byte* radii) const {
    const Byte* const line = m_source.radius.row(row);
    for (int i = 0; i < kRun; ++i)
        radii[i] = line[places[static_cast<std::size_t>(std::min(x + i, m_width - 1))]];
}

/// The blur radius at each pixel: the mean over those around it that look alike.
void RowComposer::findRadii(int x, Mixed& run) {
    constexpr int kReach = CompositionAxis::kRadiusReach;
    const CompositionAxis &columns = m_shared.columns, &rows = m_shared.rows;
    const auto y = static_cast<std::size_t>(m_y);
    Byte middle[kRun], least[kRun], most[kRun], radii[kRun];
    radiiAt(columns.places(), rows.places()[y], x, middle);
    std::copy_n(middle, kRun, least);
    std::copy_n(middle, kRun, most);
    for (int tap = 0; tap < 9; ++tap) {
        radiiAt(columns.radiusTap((tap % 3 - 1) * kReach).places,
                rows.radiusTap((tap / 3 - 1) * kReach).places[y], x, radii);
        for (int i = 0; i < kRun; ++i) {
            least[i] = std::min(least[i], radii[i]);
            most[i] = std::max(most[i], radii[i]);
        }
    }
    for (int i = 0; i < kRun; ++i) run.radius[i] = middle[i];
    // Where the plane is level the colours need not be asked.
    if (std::equal(least, least + kRun, most)) return;
    RadiusSums sums{};
    prepareLine(x, rows.radiusTap(0));
    const ColourLine here = lineAt(0);
    std::copy_n(here.red, kRun, sums.red);
    std::copy_n(here.green, kRun, sums.green);
    std::copy_n(here.blue, kRun, sums.blue);
    for (int dy = -kReach; dy <= kReach; ++dy) {
        prepareLine(x, rows.radiusTap(dy));
        for (int dx = -kReach; dx <= kReach; ++dx) {
            const CompositionAxis::Tap& across = columns.radiusTap(dx);
            radiiAt(across.places, rows.radiusTap(dy).places[y], x, radii);
            m_shared.taps.radius({{lineAt(across.shift), across.part, radii},
                                  1.0f / static_cast<float>(1 + dx * dx + dy * dy)},
                                 sums);
        }
    }
    for (int i = 0; i < kRun; ++i)
        if (least[i] != most[i] && sums.weight[i] > 0.0f) run.radius[i] = sums.sum[i] / sums.weight[i];
}

/// The photograph under small kernels. Kernels of 1, 9, 25, ... values stand one after the other.
void RowComposer::addSmall(int x, int count, bool level, Mixed& run) {
    constexpr int kLargest = CompositionAxis::kSmallReach;
    const CompositionAxis &columns = m_shared.columns, &rows = m_shared.rows;
    SmallSums sums{};
    bool sizes[kLargest + 1] = {};
    int size[kRun];
    for (int i = 0; i < kRun; ++i) {
        sums.reach[i] = std::min(run.radius[i] * kSmallReachOfRadius, kLargestSmallReach);
        const bool wanted = i < count && run.radius[i] > 0.0f && run.share[i] < 1.0f;
        size[i] = wanted ? static_cast<int>(std::ceil(sums.reach[i])) : 0;
        sizes[size[i]] = true;
    }
    Byte radii[kRun];
    if (level) std::fill_n(radii, kRun, static_cast<Byte>(run.radius[0]));
    const float* weight = kBokehData.data() + 1;
    for (int reach = 1; reach <= kLargest; ++reach) {
        if (!sizes[reach]) {
            weight += (2 * reach + 1) * (2 * reach + 1);
            continue;
        }
        for (int i = 0; i < kRun; ++i) sums.taken[i] = size[i] == reach ? 1.0f : 0.0f;
        for (int dy = -reach; dy <= reach; ++dy) {
            prepareLine(x, rows.smallTap(dy));
            const int row = rows.smallTap(dy).places[static_cast<std::size_t>(m_y)];
            for (int dx = -reach; dx <= reach; ++dx, ++weight) {
                const CompositionAxis::Tap& across = columns.smallTap(dx);
                if (!level) radiiAt(across.places, row, x, radii);
                m_shared.taps.small({{lineAt(across.shift), across.part, radii},
                                     static_cast<float>(std::max(std::abs(dx), std::abs(dy))),
                                     *weight},
                                    sums);
            }
        }
    }
    for (int i = 0; i < count; ++i) {
        if (size[i] == 0) continue;
        const float rest = 1.0f - run.share[i], scale = rest / sums.weight[i];
        run.red[i] = sums.red[i] * scale;
        run.green[i] = sums.green[i] * scale;
        run.blue[i] = sums.blue[i] * scale;
        // The kernel leaves this share of the variance of the photograph's own grain.
        const float left = sums.squares[i] / (sums.weight[i] * sums.weight[i]) * rest * rest;
        run.gain[i] = std::sqrt(std::max(1.0f - left, 0.0f));
    }
}

/// The working picture around the pixel, from those of its pixels that are blurred alike, within `reach`. The
/// fourth value is their weight.
void RowComposer::softSum(int x, int reach, float radius, float* sum) const {
    const CompositionAxis &columns = m_shared.columns, &rows = m_shared.rows;
    const ConstImageView& soft = m_source.soft;
    for (int dy = 1 - reach; dy <= reach; ++dy) {
        const int row = rows.corner(m_y) + dy;
        const Byte* const radii = m_source.radius.row(std::clamp(row, 0, soft.height - 1));
        const Byte* const colours = soft.row(mirrored(row, soft.height));
        const float down = std::max(
            1.0f - std::fabs(static_cast<float>(dy) - rows.part(m_y)) / static_cast<float>(reach), 0.0f);
        for (int dx = 1 - reach; dx <= reach; ++dx) {
            const int column = columns.corner(x) + dx;
            const float across = std::max(
                1.0f - std::fabs(static_cast<float>(dx) - columns.part(x)) / static_cast<float>(reach), 0.0f);
            const float weight =
                across * down * blurredAlike(radii[std::clamp(column, 0, soft.width - 1)], radius);
            const Byte* const pixel = colours + at(mirrored(column, soft.width));
            for (int c = 0; c < 3; ++c) sum[c] += static_cast<float>(pixel[c]) * weight;
            sum[3] += weight;
        }
    }
}

/// Beside the outline of a subject that the coarse plane draws too large, the nearest working pixels are all the
/// subject's; farther ones serve then. Leaves `colour`, which lies between the nearest, where none can serve.
void RowComposer::softColour(int x, float radius, float* colour) const {
    constexpr float kFew = 0.25f, kNone = 1e-4f, kFarShare = 0.02f;
    constexpr int kFar = 4;
    float sum[4] = {}, far[4] = {};
    softSum(x, 1, radius, sum);
    if (sum[3] < kFew) {
        softSum(x, kFar, radius, far);
        for (int c = 0; c < 4; ++c) sum[c] += kFarShare * far[c];
    }
    if (sum[3] > kNone)
        for (int c = 0; c < 3; ++c) colour[c] = sum[c] / sum[3];
}

void RowComposer::addSoft(int x, int count, Mixed& run) {
    FineRun fine;
    fineSoft(x, count, fine);
    const CompositionAxis& columns = m_shared.columns;
    const PlaneView<const Byte>& radii = m_source.radius;
    const auto line = [&](int row) { return radii.row(std::clamp(row, 0, radii.height - 1)); };
    const Byte *upper = line(m_shared.rows.corner(m_y)), *lower = line(m_shared.rows.corner(m_y) + 1);
    for (int i = 0; i < count; ++i) {
        if (!(run.share[i] > 0.0f)) continue;
        float colour[3];
        for (int c = 0; c < 3; ++c) colour[c] = static_cast<float>(fine.pixels[i][c]) * kFine;
        const int left = std::max(columns.corner(x + i), 0),
                  right = std::min(columns.corner(x + i) + 1, radii.width - 1);
        const Byte least = std::min({upper[left], upper[right], lower[left], lower[right]});
        if (static_cast<float>(least) < kAlike * std::max(run.radius[i], 1.0f))
            softColour(x + i, run.radius[i], colour);
        run.red[i] += colour[0] * run.share[i];
        run.green[i] += colour[1] * run.share[i];
        run.blue[i] += colour[2] * run.share[i];
    }
}

/// `level`: all around the run the radius is one.
void RowComposer::mixedRun(int x, int count, bool level, Byte* target) {
    Mixed run{};
    if (level) {
        Byte radii[kRun];
        radiiAt(m_shared.columns.places(), m_shared.rows.places()[static_cast<std::size_t>(m_y)], x, radii);
        std::copy_n(radii, kRun, run.radius);
    } else {
        findRadii(x, run);
    }
    bool anySmall = false, anySoft = false;
    for (int i = 0; i < kRun; ++i) {
        run.share[i] = smoothstep(m_shared.smallAlone, m_shared.softAlone, run.radius[i]);
        run.gain[i] = 1.0f;
        anySmall = anySmall || (run.radius[i] > 0.0f && run.share[i] < 1.0f);
        anySoft = anySoft || run.share[i] > 0.0f;
    }
    if (anySmall) addSmall(x, count, level, run);
    if (anySoft) addSoft(x, count, run);
    FineRun noise;
    if (anySmall || anySoft) fineNoise(x, count, noise);
    const Byte* const origin = photograph() + at(x);
    for (int i = 0; i < count; ++i) {
        Byte* const pixel = target + at(i);
        std::memcpy(pixel, origin + at(i), 4);
        if (!(run.radius[i] > 0.0f)) continue;
        const float colour[3] = {run.red[i], run.green[i], run.blue[i]};
        for (int c = 0; c < 3; ++c) {
            const float level255 =
                colour[c] + static_cast<float>(noise.pixels[i][c]) * kFine * run.gain[i] + 0.5f;
            pixel[c] = static_cast<Byte>(std::clamp(level255, 0.0f, 255.0f));
        }
    }
}

}  // namespace

void composePicture(const CompositionSource& source, const ImageView& target) {
    const Shared shared(source);
    parallelRows(target.height, [&](int begin, int end) {
        RowComposer composer(shared);
        for (int y = begin; y < end; ++y) composer.compose(y, target.row(y));
    });
}

}  // namespace zellab::Bokeh
