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
    static Doubles MultiplyAdd(Doubles a, Doubles b, Doubles c) { return _mm512_fmadd_pd(a, b, c); }
    static Doubles MultiplySubtract(Doubles a, Doubles b, Doubles c) {
        return _mm512_fmsub_pd(a, b, c);
    }
    static Mask Greater(Doubles a, Doubles b) { return _mm512_cmp_pd_mask(a, b, _CMP_GT_OQ); }
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
    static Pixels Union(Pixels a, Pixels b) { return _mm512_or_si512(a, b); }
    static bool Any(Mask mask) { return mask != 0; }
    static bool All(Mask mask) { return mask == 0xFF; }

    /// Truncates four channels of eight pixels, to the low 16 bits of 32-bit integers.
    ///
    ///      Pair     | 0 | 0 | g | r |   and   | 0 | 0 | a | b |
    ///      Pack     | a | b | g | r |
    ///
    /// Whatever does not fit 32 bits would become 0x8000'0000 and thus, by its low bits, 0; but the
    /// conversion also raises an exception that a host may have unmasked. The values must fit in
    /// all lanes, also in those that are not stored.
    static Pixels Pack(Doubles r, Doubles g, Doubles b, Doubles a) {
        return _mm512_or_si512(Pair(r, g), _mm512_slli_epi64(Pair(b, a), 32));
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

    /// Fetches pixels at eight indices of a row, by loads and a permutation where the indices lie
    /// so close together that no load can leave the row (see Avx2Lanes). One load reaches 8 pixels;
    /// a permutation takes from two registers, so two reach 16; four are two such halves, of which
    /// bit 4 of the offset chooses, since permutations look at the bits below only.
    class Picker {
      public:
        Picker(const int32_t* indices, int32_t width)
            : indices_(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(indices))),
              first_(*indices) {
            const __m256i offsets = _mm256_sub_epi32(indices_, _mm256_set1_epi32(first_));
            const auto beyond = [&](int count) {
                return first_ > width - count ||
                       _mm256_cmpge_epu32_mask(offsets, _mm256_set1_epi32(count)) != 0;
            };
            loads_ = !beyond(8) ? 1 : !beyond(16) ? 2 : !beyond(32) ? 4 : 0;
            offsets_ = _mm512_cvtepu32_epi64(offsets);
        }

        Pixels Pick(const RGBA16* row) const {
            if (loads_ == 1) {
                return _mm512_permutexvar_epi64(offsets_, _mm512_loadu_si512(row + first_));
            }
            if (loads_ == 2) {
                return PickOfSixteen(row + first_);
            }
            if (loads_ == 4) {
                const Mask late = _mm512_test_epi64_mask(offsets_, _mm512_set1_epi64(16));
                return _mm512_mask_blend_epi64(late, PickOfSixteen(row + first_),
                                               PickOfSixteen(row + first_ + 16));
            }
            return _mm512_i32gather_epi64(indices_, row, sizeof(RGBA16));
        }

      private:
        Pixels PickOfSixteen(const RGBA16* pixels) const {
            return _mm512_permutex2var_epi64(_mm512_loadu_si512(pixels), offsets_,
                                             _mm512_loadu_si512(pixels + 8));
        }

        __m256i indices_;
        Pixels offsets_;
        int32_t first_;
        int loads_;
    };

  private:
    /// The bits in `mask` as the low end of a double from 2^52 on.
    static Doubles Raised(Pixels pixels, Pixels mask) {
        const Pixels raise = _mm512_set1_epi64(0x4330'0000'0000'0000);
        return _mm512_castsi512_pd(_mm512_ternarylogic_epi64(pixels, mask, raise, 0xEA));
    }

    static constexpr uint64_t kAlpha = 0xFFFF'0000'0000'0000;

    static Pixels Pair(Doubles low, Doubles high) {
        const __m256i lows = _mm512_cvttpd_epi32(low);
        const __m256i highs = _mm256_slli_epi32(_mm512_cvttpd_epi32(high), 16);
        return _mm512_cvtepu32_epi64(_mm256_blend_epi16(lows, highs, 0xAA));
    }
};

}  // namespace
}  // namespace imgbasic
