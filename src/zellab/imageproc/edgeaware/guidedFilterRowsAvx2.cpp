#include <immintrin.h>

#include <limits>

#include "platform/simdLevel.h"
#include "zellab/imageproc/edgeaware/guidedFilterRows.h"

/// Eight windows at a time: the steps of guidedFilterRows.cpp in the same order, so with the same bits.

namespace zellab {

namespace {

using Lanes = __m256;

ZEL_TARGET_AVX2 inline Lanes all(float value) {
    return _mm256_set1_ps(value);
}
ZEL_TARGET_AVX2 inline Lanes choose(Lanes condition, Lanes yes, Lanes no) {
    return _mm256_blendv_ps(no, yes, condition);
}
ZEL_TARGET_AVX2 inline Lanes magnitude(Lanes v) {
    return _mm256_andnot_ps(all(-0.0f), v);
}
ZEL_TARGET_AVX2 inline Lanes negated(Lanes v) {
    return _mm256_xor_ps(all(-0.0f), v);
}

struct Vectors {
    Lanes x, y, z;
};

ZEL_TARGET_AVX2 inline Lanes dot(const Vectors& a, const Vectors& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
ZEL_TARGET_AVX2 inline Vectors choose(Lanes condition, const Vectors& yes, const Vectors& no) {
    return {choose(condition, yes.x, no.x), choose(condition, yes.y, no.y), choose(condition, yes.z, no.z)};
}

struct Symmetrics {
    Lanes rr, rg, rb, gg, gb, bb;
};

struct EightRoots {
    Lanes first, second, third, firstApart;
};

ZEL_TARGET_AVX2 inline EightRoots eigenvalues(const RootTables& tables, const Symmetrics& c) {
    const Lanes q = (c.rr + c.gg + c.bb) * all(kThird);
    const Lanes r = c.rr - q, g = c.gg - q, b = c.bb - q;
    const Lanes squares = r * r + g * g + b * b, mixed = c.rg * c.rg + c.rb * c.rb + c.gb * c.gb;
    const Lanes p = _mm256_sqrt_ps((squares + all(2.0f) * mixed) * all(kSixth));
    const Lanes determinant =
        r * (g * b - c.gb * c.gb) - c.rg * (c.rg * b - c.gb * c.rb) + c.rb * (c.rg * c.gb - g * c.rb);
    const Lanes d = determinant / (p * p * p);
    // The maximum takes its second operand where there is no d.
    const Lanes place = _mm256_max_ps(d * all(500.0f) + all(1000.0f), all(0.0f));
    const __m256i k = _mm256_cvttps_epi32(_mm256_min_ps(place, all(RootTables::kEntries - 1)));
    const Lanes twice = all(2.0f) * p;
    Lanes first = twice * _mm256_i32gather_ps(tables.first.data(), k, 4);
    Lanes second = twice * _mm256_i32gather_ps(tables.second.data(), k, 4);
    const Lanes low = _mm256_cmp_ps(d, all(-2.0f), _CMP_LE_OQ),
                high = _mm256_cmp_ps(d, all(2.0f), _CMP_GE_OQ);
    first = choose(low, p, choose(high, twice, first));
    second = choose(low, twice, choose(high, negated(p), second));
    const Lanes least = all(kLeastRoot);
    return {_mm256_max_ps(q + first, least), _mm256_max_ps(q - first - second, least),
            _mm256_max_ps(q + second, least), _mm256_cmp_ps(d, all(0.0f), _CMP_GE_OQ)};
}

ZEL_TARGET_AVX2 inline Vectors longestCross(const Symmetrics& c, Lanes e) {
    const Lanes r = c.rr - e, g = c.gg - e, b = c.bb - e;
    const Lanes xy = c.rb * c.gb - c.rg * b, xz = c.rg * c.gb - c.rb * g, yz = c.rg * c.rb - r * c.gb;
    const Vectors rows[3] = {
        {g * b - c.gb * c.gb, xy, xz}, {xy, r * b - c.rb * c.rb, yz}, {xz, yz, r * g - c.rg * c.rg}};
    Vectors longest = rows[0];
    for (int i = 1; i < 3; ++i)
        longest =
            choose(_mm256_cmp_ps(dot(rows[i], rows[i]), dot(longest, longest), _CMP_GT_OQ), rows[i], longest);
    return longest;
}

ZEL_TARGET_AVX2 inline Vectors normalised(const Vectors& v) {
    const Lanes square = dot(v, v), inverse = all(1.0f) / _mm256_sqrt_ps(square);
    return choose(_mm256_cmp_ps(square, all(0.0f), _CMP_GT_OQ),
                  Vectors{v.x * inverse, v.y * inverse, v.z * inverse},
                  Vectors{all(0.0f), all(0.0f), all(1.0f)});
}

ZEL_TARGET_AVX2 inline Vectors besides(const Vectors& v, const Vectors& axis) {
    const Lanes along = dot(v, axis);
    const Vectors rest = {v.x - axis.x * along, v.y - axis.y * along, v.z - axis.z * along};
    const Vectors any = {all(0.0f), axis.z, negated(axis.y)};
    const Lanes sure = _mm256_cmp_ps(dot(rest, rest), dot(v, v) * all(kNoDirection), _CMP_GT_OQ);
    return normalised(choose(sure, rest, any));
}

ZEL_TARGET_AVX2 inline Lanes gains(const GainCurve& curve, Lanes roots) {
    Lanes t = roots;
    if (curve.exponent != 1.0f) {
        alignas(32) float single[8];
        _mm256_store_ps(single, roots);
        for (float& value : single) value = curve.power(value);
        t = _mm256_load_ps(single);
    }
    const Lanes gain = (all(curve.b) + t) / (all(curve.a) + t);
    const Lanes sane = _mm256_cmp_ps(magnitude(gain), all(std::numeric_limits<float>::max()), _CMP_LE_OQ);
    return choose(sane, gain, all(1.0f));
}

ZEL_TARGET_AVX2 inline void storeModels(const Symmetrics& a, const Vectors& mean, NineRows<float> models,
                                        int x) {
    const Lanes model[kCoefficients] = {a.rr,
                                        a.rg,
                                        a.rb,
                                        a.gg,
                                        a.gb,
                                        a.bb,
                                        mean.x - (a.rr * mean.x + a.rg * mean.y + a.rb * mean.z),
                                        mean.y - (a.rg * mean.x + a.gg * mean.y + a.gb * mean.z),
                                        mean.z - (a.rb * mean.x + a.gb * mean.y + a.bb * mean.z)};
    for (std::size_t i = 0; i < kCoefficients; ++i) _mm256_storeu_ps(models[i] + x, model[i]);
}

/// One channel of eight pixels as floats.
ZEL_TARGET_AVX2 inline Lanes channel(__m256i pixels, int shift) {
    return _mm256_cvtepi32_ps(
        _mm256_and_si256(_mm256_srl_epi32(pixels, _mm_cvtsi32_si128(shift)), _mm256_set1_epi32(255)));
}

/// Half added, limited, truncated: eight bytes in 32-bit places. What is not a number becomes 0.
ZEL_TARGET_AVX2 inline __m256i bytes(Lanes value) {
    const Lanes above = _mm256_max_ps(value + all(0.5f), all(0.0f));
    return _mm256_cvttps_epi32(_mm256_min_ps(above, all(255.0f)));
}

}  // namespace

ZEL_TARGET_AVX2 int coefficientRowAvx2(const RootTables& roots, const GainCurve& curve,
                                       NineRows<const float> moments, NineRows<float> models, int count) {
    int x = 0;
    for (; x <= count - 8; x += 8) {
        Lanes m[kMoments];
        for (std::size_t i = 0; i < kMoments; ++i) m[i] = _mm256_loadu_ps(moments[i] + x);
        const Symmetrics c = {m[3] - m[0] * m[0], m[4] - m[0] * m[1], m[5] - m[0] * m[2],
                              m[6] - m[1] * m[1], m[7] - m[1] * m[2], m[8] - m[2] * m[2]};
        const EightRoots e = eigenvalues(roots, c);
        const Lanes apart = choose(e.firstApart, e.first, e.third),
                    last = choose(e.firstApart, e.third, e.first);
        const Vectors u = normalised(longestCross(c, apart));
        const Vectors v = besides(longestCross(c, e.second), u);
        const Vectors w = {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
        const Lanes gu = gains(curve, apart), gv = gains(curve, e.second), gw = gains(curve, last);
        const Symmetrics a = {gu * (u.x * u.x) + gv * (v.x * v.x) + gw * (w.x * w.x),
                              gu * (u.x * u.y) + gv * (v.x * v.y) + gw * (w.x * w.y),
                              gu * (u.x * u.z) + gv * (v.x * v.z) + gw * (w.x * w.z),
                              gu * (u.y * u.y) + gv * (v.y * v.y) + gw * (w.y * w.y),
                              gu * (u.y * u.z) + gv * (v.y * v.z) + gw * (w.y * w.z),
                              gu * (u.z * u.z) + gv * (v.z * v.z) + gw * (w.z * w.z)};
        storeModels(a, {m[0], m[1], m[2]}, models, x);
    }
    return x;
}

ZEL_TARGET_AVX2 int applyModelRowAvx2(NineRows<const float> models, Byte* rgba, int count) {
    int x = 0;
    for (; x <= count - 8; x += 8) {
        Lanes m[kCoefficients];
        for (std::size_t i = 0; i < kCoefficients; ++i) m[i] = _mm256_loadu_ps(models[i] + x);
        auto* const pixels = reinterpret_cast<__m256i*>(rgba + std::ptrdiff_t{4} * x);
        const __m256i before = _mm256_loadu_si256(pixels);
        const Lanes r = channel(before, 0), g = channel(before, 8), b = channel(before, 16);
        const __m256i red = bytes(m[0] * r + m[1] * g + m[2] * b + m[6]);
        const __m256i green = bytes(m[1] * r + m[3] * g + m[4] * b + m[7]);
        const __m256i blue = bytes(m[2] * r + m[4] * g + m[5] * b + m[8]);
        const __m256i alpha = _mm256_set1_epi32(static_cast<int>(0xff000000u));
        const __m256i colours =
            _mm256_or_si256(red, _mm256_or_si256(_mm256_slli_epi32(green, 8), _mm256_slli_epi32(blue, 16)));
        _mm256_storeu_si256(pixels, _mm256_or_si256(colours, alpha));
    }
    return x;
}

}  // namespace zellab
