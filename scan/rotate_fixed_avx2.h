#pragma once
// AVX2 kernels for the 24-bit fixed-point blend of 8-bit channels,
// value = (x * A + y * B) >> 24 with A + B = 2^24, exact to the bit.
//
// Each weight is split into two 12-bit halves, A = Ah * 4096 + Al, so that
// 16-bit multiply-adds of (x, y) pairs give x * Ah + y * Bh and x * Al + y * Bl.
// (high << 12) + low is x * A + y * B itself, below 255 * 2^24, so it fits
// 32 bits unsigned and its top byte is the value. The 32-bit multiplies that
// the compiler makes of the plain loops cost twice as much.
//
// Included only by the translation unit compiled for AVX2, inside its target
// region.
#include <immintrin.h>

#include <cstdint>
#include <vector>

namespace fixed_avx2 {

// (weight of x, weight of y) as two int16 in one 32-bit lane, for madd.
inline uint32_t high_pair(uint32_t wa, uint32_t wb) { return (wa >> 12) | (wb >> 12) << 16; }
inline uint32_t low_pair(uint32_t wa, uint32_t wb) { return (wa & 0xfffu) | (wb & 0xfffu) << 16; }

// One channel by the split weights; the same sum as the vectors make.
inline uint8_t mix_split(uint8_t x, uint8_t y, uint32_t high, uint32_t low)
{
    const uint32_t h = x * (high & 0xffffu) + y * (high >> 16);
    const uint32_t l = x * (low & 0xffffu) + y * (low >> 16);
    return uint8_t(((h << 12) + l) >> 24);
}

// The value of one (x, y) pair vector: eight channels.
inline __m256i mix_pairs(__m256i pairs, __m256i high, __m256i low)
{
    const __m256i h = _mm256_madd_epi16(pairs, high);
    const __m256i l = _mm256_madd_epi16(pairs, low);
    return _mm256_srli_epi32(_mm256_add_epi32(_mm256_slli_epi32(h, 12), l), 24);
}

// 32 channels of x and y blended. Channels go into the pair vectors by
// in-lane unpacks and come back by in-lane packs, so they keep their order;
// pair vector i holds, in its two 128-bit lanes, the 4-byte groups i and
// i + 4 of the 32 bytes. high[i] and low[i] are the four weights for vector i.
inline __m256i mix32(__m256i x, __m256i y, const __m256i *high, const __m256i *low)
{
    const __m256i zero = _mm256_setzero_si256();
    const __m256i lo = _mm256_unpacklo_epi8(x, y), hi = _mm256_unpackhi_epi8(x, y);
    const __m256i v0 = mix_pairs(_mm256_unpacklo_epi8(lo, zero), high[0], low[0]);
    const __m256i v1 = mix_pairs(_mm256_unpackhi_epi8(lo, zero), high[1], low[1]);
    const __m256i v2 = mix_pairs(_mm256_unpacklo_epi8(hi, zero), high[2], low[2]);
    const __m256i v3 = mix_pairs(_mm256_unpackhi_epi8(hi, zero), high[3], low[3]);
    return _mm256_packus_epi16(_mm256_packus_epi32(v0, v1), _mm256_packus_epi32(v2, v3));
}

inline __m256i load(const uint8_t *p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(p)); }
inline void store(uint8_t *p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i *>(p), v); }

// The blends of whole lines of RGBA8 pixels, in place of the engine's plain
// loops. A line's last vector overlaps the one before rather than leaving a
// tail: dst never overlaps the sources, so writing a byte twice gives the
// same byte.
struct Rgba8Kernels {
    static constexpr int C = 4;

    // dst[i] = mix(src[i], src[i - 1]) over n pixels, `prev` before src.
    static void line(uint8_t *__restrict dst, const uint8_t *__restrict src, int32_t n, const uint8_t *prev,
                     uint32_t wa, uint32_t wb)
    {
        if (n <= 0)
            return;
        const uint32_t hp = high_pair(wa, wb), lp = low_pair(wa, wb);
        for (int c = 0; c < C; ++c)
            dst[c] = mix_split(src[c], prev[c], hp, lp);
        const int32_t len = n * C;
        if (len < C + 32) {
            for (int32_t i = C; i < len; ++i)
                dst[i] = mix_split(src[i], src[i - C], hp, lp);
            return;
        }
        const __m256i h = _mm256_set1_epi32(int32_t(hp)), l = _mm256_set1_epi32(int32_t(lp));
        const __m256i high[4] = {h, h, h, h}, low[4] = {l, l, l, l};
        for (int32_t i = C;; i += 32) {
            if (i > len - 32)
                i = len - 32;
            store(dst + i, mix32(load(src + i), load(src + i - C), high, low));
            if (i == len - 32)
                break;
        }
    }

    // The weights of the vertical pass, a split pair for each column.
    class Columns {
    public:
        void resize(int32_t n)
        {
            high_.resize(size_t(n));
            low_.resize(size_t(n));
        }
        void set(int32_t k, uint32_t wa, uint32_t wb)
        {
            high_[size_t(k)] = high_pair(wa, wb);
            low_[size_t(k)] = low_pair(wa, wb);
        }

        // Pixels [k0, k1) of a row: dst = mix(a, b) by each column's weights.
        void blend(uint8_t *__restrict dst, const uint8_t *__restrict a, const uint8_t *__restrict b, int32_t k0,
                   int32_t k1) const
        {
            constexpr int32_t kStep = 32 / C;
            if (k1 - k0 < kStep) {
                for (int32_t k = k0; k < k1; ++k)
                    for (int c = 0; c < C; ++c) {
                        const size_t i = size_t(k) * C + c;
                        dst[i] = mix_split(a[i], b[i], high_[size_t(k)], low_[size_t(k)]);
                    }
                return;
            }
            for (int32_t k = k0;; k += kStep) {
                if (k > k1 - kStep)
                    k = k1 - kStep;
                const size_t at = size_t(k) * C;
                __m256i high[4], low[4];
                spread(high_.data() + k, high);
                spread(low_.data() + k, low);
                store(dst + at, mix32(load(a + at), load(b + at), high, low));
                if (k == k1 - kStep)
                    break;
            }
        }

    private:
        // The weights of eight pixels, each repeated over its four channels
        // in the order of mix32's pair vectors: pixels 0 and 4, 1 and 5, ...
        static void spread(const uint32_t *w, __m256i *out)
        {
            const __m256i all = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(w));
            out[0] = _mm256_shuffle_epi32(all, 0x00);
            out[1] = _mm256_shuffle_epi32(all, 0x55);
            out[2] = _mm256_shuffle_epi32(all, 0xaa);
            out[3] = _mm256_shuffle_epi32(all, 0xff);
        }

        std::vector<uint32_t> high_, low_;
    };
};

} // namespace fixed_avx2
