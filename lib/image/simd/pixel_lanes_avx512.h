#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "lib/image/pixels/rgba16.h"

// Unnamed inside, so that these inline functions and the templates over them stay in their object
// file: the linker could otherwise put them into the baseline code.
namespace imgbasic {
namespace {

/// Eight neighbouring pixels, a 64-bit lane each. Only for files compiled for AVX-512.
struct Avx512Lanes {
    static constexpr size_t kCount = 8;
    using Doubles = __m512d;
    using Pixels = __m512i;
    using Mask = __mmask8;

    static Doubles Set(double value) { return _mm512_set1_pd(value); }
    static Doubles Load(const double* values) { return _mm512_loadu_pd(values); }
    static void Store(double* values, Doubles doubles) { _mm512_storeu_pd(values, doubles); }
    static Doubles MultiplyAdd(Doubles a, Doubles b, Doubles c) { return _mm512_fmadd_pd(a, b, c); }
    static Doubles MultiplySubtract(Doubles a, Doubles b, Doubles c) {
        return _mm512_fmsub_pd(a, b, c);
    }
    static Mask Greater(Doubles a, Doubles b) { return _mm512_cmp_pd_mask(a, b, _CMP_GT_OQ); }
    static Mask Equal(Doubles a, Doubles b) { return _mm512_cmp_pd_mask(a, b, _CMP_EQ_OQ); }
    static Mask Both(Mask a, Mask b) { return _kand_mask8(a, b); }
    static Doubles Select(Mask mask, Doubles yes, Doubles no) {
        return _mm512_mask_blend_pd(mask, no, yes);
    }

    /// 2^52 plus a colour channel as it stands in the lane, times 1, 2^16 or 2^32. The bits become
    /// the mantissa of a double whose last place is 1:
    ///
    ///      bits      63 ... 52 | 47 ... 32 | 31 ... 16 | 15 ... 0
    ///      pixel       alpha   |   blue    |   green   |   red
    ///      raised      0x433   |     0     |   green   |    0        = 2^52 + green * 2^16
    template <int kChannel>
    static Doubles RaisedColor(Pixels pixels) {
        return Raised(pixels, _mm512_set1_epi64(0xFFFFLL << kChannel * 16));
    }

    /// 2^52 plus the alpha channel.
    static Doubles RaisedAlpha(Pixels pixels) {
        return Raised(_mm512_srli_epi64(pixels, 48), _mm512_set1_epi64(-1));
    }

    static Mask Visible(Pixels pixels) {
        return _mm512_test_epi64_mask(pixels, _mm512_set1_epi64(static_cast<long long>(kAlpha)));
    }
    /// Has no bits in the alpha of opaque pixels.
    static Pixels NotOpaque(Pixels pixels) {
        return _mm512_xor_si512(pixels, _mm512_set1_epi16(static_cast<short>(kFullScale)));
    }
    static Pixels Union(Pixels a, Pixels b) { return _mm512_or_si512(a, b); }
    static bool Any(Mask mask) { return mask != 0; }
    static bool All(Mask mask) { return mask == 0xFF; }

    /// Truncates four channels of eight pixels, each to 16 bits; green comes times 2^16 and blue
    /// times 2^32, as RaisedColor gives them, so that the bits of either stand where they belong,
    /// over those of its fraction. The values, without that factor, must not be negative and fit 31
    /// bits in all lanes, also in those that are not stored: what fits no 64-bit integer raises an
    /// exception that a host may have unmasked.
    static Pixels Pack(Doubles r, Doubles g, Doubles b, Doubles a) {
        const auto merge = [](long long low, Pixels lower, Pixels upper) {
            return _mm512_ternarylogic_epi64(_mm512_set1_epi64(low), lower, upper, 0xCA);
        };
        const Pixels alpha = _mm512_slli_epi64(_mm512_cvttpd_epi64(a), 48);
        const Pixels redGreen = merge(0xFFFF, _mm512_cvttpd_epi64(r), _mm512_cvttpd_epi64(g));
        const Pixels blueAlpha = merge(0xFFFF'FFFF'FFFF, _mm512_cvttpd_epi64(b), alpha);
        return merge(0xFFFF'FFFF, redGreen, blueAlpha);
    }

    /// Stores the pixels in `mask`; streamed stores need an aligned `dst` and all pixels, others
    /// are made through the caches.
    static void Store(RGBA16* dst, Pixels pixels, Mask mask, bool streaming) {
        if (!All(mask)) {
            _mm512_mask_storeu_epi64(dst, mask, pixels);
        } else if (streaming) {
            _mm512_stream_si512(reinterpret_cast<__m512i*>(dst), pixels);
        } else {
            _mm512_storeu_si512(dst, pixels);
        }
    }

    static Pixels Load(const RGBA16* pixels) { return _mm512_loadu_si512(pixels); }

    struct Two {
        Pixels low;
        Pixels high;
    };

    /// a0 b0 a1 b1 ..., in two vectors.
    static Two Interleave(Pixels a, Pixels b) {
        const Pixels low = _mm512_setr_epi64(0, 8, 1, 9, 2, 10, 3, 11);
        const Pixels high = _mm512_add_epi64(low, _mm512_set1_epi64(4));
        return {_mm512_permutex2var_epi64(a, low, b), _mm512_permutex2var_epi64(a, high, b)};
    }

    /// Eight times as many neighbouring pixels, to take every second or every third of.
    template <int kStride>
    class Comb {
      public:
        explicit Comb(const RGBA16* pixels) : first_(Load(pixels)), second_(Load(pixels + 8)) {
            static_assert(kStride == 2 || kStride == 3);
            if constexpr (kStride == 3) {
                third_ = Load(pixels + 16);
            }
        }

        /// The pixels kFirst, kFirst + kStride, ...
        template <int kFirst>
        Pixels Every() const {
            static_assert(kFirst < kStride);
            const auto at = [](int n) { return (kFirst + n * kStride) % 16; };
            const Pixels offsets =
                _mm512_setr_epi64(at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7));
            const Pixels early = _mm512_permutex2var_epi64(first_, offsets, second_);
            if constexpr (kStride == 2) {
                return early;
            } else {
                // The third vector's are the last two, or three from the second pixel on: the low
                // bits of the offsets are their places there.
                constexpr Mask kLate = kFirst == 0 ? 0xC0 : 0xE0;
                return _mm512_mask_permutexvar_epi64(early, kLate, offsets, third_);
            }
        }

      private:
        Pixels first_;
        Pixels second_;
        [[maybe_unused]] Pixels third_;
    };

    /// Fetches pixels at eight ascending indices of a row, by loads and a permutation where the
    /// indices lie so close together that no load can leave the row (see Avx2Lanes). One load
    /// reaches 8 pixels; a permutation takes from two registers, so two reach 16; four are two such
    /// halves, of which bit 4 of the offset chooses, since permutations look at the bits below
    /// only.
    class Picker {
      public:
        Picker(const int32_t* indices, int32_t width)
            : indices_(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(indices))),
              first_(*indices),
              reach_(indices[7] - first_),
              room_(width - first_) {}

        Pixels Pick(const RGBA16* row) const {
            const RGBA16* pixels = row + first_;
            const Pixels offsets =
                _mm512_cvtepu32_epi64(_mm256_sub_epi32(indices_, _mm256_set1_epi32(first_)));
            if (reach_ < 8 && room_ >= 8) {
                return _mm512_permutexvar_epi64(offsets, Load(pixels));
            }
            if (reach_ < 16 && room_ >= 16) {
                return PickOfSixteen(pixels, offsets);
            }
            if (reach_ < 32 && room_ >= 32) {
                const Mask late = _mm512_test_epi64_mask(offsets, _mm512_set1_epi64(16));
                return _mm512_mask_blend_epi64(late, PickOfSixteen(pixels, offsets),
                                               PickOfSixteen(pixels + 16, offsets));
            }
            return _mm512_i32gather_epi64(indices_, row, sizeof(RGBA16));
        }

      private:
        static Pixels PickOfSixteen(const RGBA16* pixels, Pixels offsets) {
            return _mm512_permutex2var_epi64(Load(pixels), offsets, Load(pixels + 8));
        }

        __m256i indices_;
        int32_t first_;
        int32_t reach_;
        int32_t room_;
    };

    static Pixels PickOnce(const RGBA16* row, const int32_t* indices, int32_t width) {
        return Picker(indices, width).Pick(row);
    }

  private:
    /// The bits in `mask` as the low end of a double from 2^52 on.
    static Doubles Raised(Pixels pixels, Pixels mask) {
        const Pixels raise = _mm512_set1_epi64(0x4330'0000'0000'0000);
        return _mm512_castsi512_pd(_mm512_ternarylogic_epi64(pixels, mask, raise, 0xEA));
    }

    static constexpr uint64_t kAlpha = 0xFFFF'0000'0000'0000;
};

}  // namespace
}  // namespace imgbasic
