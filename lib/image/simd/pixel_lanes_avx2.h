#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "lib/image/pixels/rgba16.h"

// Unnamed inside, so that these inline functions and the templates over them stay in their object
// file: the linker could otherwise put them into the baseline code.
namespace imgbasic {
namespace {

/// Four neighbouring pixels, a 64-bit lane each. Only for files compiled for AVX2.
struct Avx2Lanes {
    static constexpr size_t kCount = 4;
    using Doubles = __m256d;
    using Pixels = __m256i;
    using Mask = __m256i;

    static Doubles Set(double value) { return _mm256_set1_pd(value); }
    static Doubles Load(const double* values) { return _mm256_loadu_pd(values); }
    static void Store(double* values, Doubles doubles) { _mm256_storeu_pd(values, doubles); }
    static Doubles MultiplyAdd(Doubles a, Doubles b, Doubles c) { return _mm256_fmadd_pd(a, b, c); }
    static Doubles MultiplySubtract(Doubles a, Doubles b, Doubles c) {
        return _mm256_fmsub_pd(a, b, c);
    }
    static Mask Greater(Doubles a, Doubles b) {
        return _mm256_castpd_si256(_mm256_cmp_pd(a, b, _CMP_GT_OQ));
    }
    static Mask Equal(Doubles a, Doubles b) {
        return _mm256_castpd_si256(_mm256_cmp_pd(a, b, _CMP_EQ_OQ));
    }
    static Mask Both(Mask a, Mask b) { return _mm256_and_si256(a, b); }
    static Doubles Select(Mask mask, Doubles yes, Doubles no) {
        return _mm256_blendv_pd(no, yes, _mm256_castsi256_pd(mask));
    }

    /// 2^52 plus a colour channel as it stands in the lane, times 1, 2^16 or 2^32. The bits become
    /// the mantissa of a double whose last place is 1:
    ///
    ///      bits      63 ... 52 | 47 ... 32 | 31 ... 16 | 15 ... 0
    ///      pixel       alpha   |   blue    |   green   |   red
    ///      raised      0x433   |     0     |   green   |    0        = 2^52 + green * 2^16
    template <int kChannel>
    static Doubles RaisedColor(Pixels pixels) {
        const Pixels raise = _mm256_set1_epi64x(0x4330'0000'0000'0000);
        return _mm256_castsi256_pd(_mm256_blend_epi16(raise, pixels, 0x11 << kChannel));
    }

    /// 2^52 plus the alpha channel.
    static Doubles RaisedAlpha(Pixels pixels) { return Raise(_mm256_srli_epi64(pixels, 48)); }

    static Mask Visible(Pixels pixels) {
        return _mm256_cmpgt_epi64(_mm256_srli_epi64(pixels, 48), _mm256_setzero_si256());
    }
    /// Has no bits in the alpha of opaque pixels.
    static Pixels NotOpaque(Pixels pixels) {
        return _mm256_xor_si256(pixels, _mm256_set1_epi16(static_cast<short>(kFullScale)));
    }
    static Pixels Union(Pixels a, Pixels b) { return _mm256_or_si256(a, b); }
    static bool Any(Mask mask) { return _mm256_testz_si256(mask, mask) == 0; }
    static bool All(Mask mask) { return _mm256_movemask_pd(_mm256_castsi256_pd(mask)) == 0xF; }

    /// Truncates four channels of four pixels, to the low 16 bits of 32-bit integers; green comes
    /// times 2^16 and blue times 2^32, as RaisedColor gives them.
    ///
    ///      Pair     | 0 | 0 | g | r |   and   | 0 | 0 | a | b |
    ///      Pack     | a | b | g | r |
    ///
    /// Whatever does not fit 32 bits would become 0x8000'0000 and thus, by its low bits, 0; but the
    /// conversion also raises an exception that a host may have unmasked. The values must fit in
    /// all lanes, also in those that are not stored.
    static Pixels Pack(Doubles r, Doubles g, Doubles b, Doubles a) {
        return _mm256_or_si256(Pair(r, g * Set(0x1p-16)),
                               _mm256_slli_epi64(Pair(b * Set(0x1p-32), a), 32));
    }

    /// Stores the pixels in `mask`; streamed stores need an aligned `dst` and all pixels, others
    /// are made through the caches.
    static void Store(RGBA16* dst, Pixels pixels, Mask mask, bool streaming) {
        auto* address = reinterpret_cast<__m256i*>(dst);
        if (!All(mask)) {
            _mm256_maskstore_epi64(reinterpret_cast<long long*>(dst), mask, pixels);
        } else if (streaming) {
            _mm256_stream_si256(address, pixels);
        } else {
            _mm256_storeu_si256(address, pixels);
        }
    }

    static Pixels Load(const RGBA16* pixels) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
    }

    struct Two {
        Pixels low;
        Pixels high;
    };

    /// a0 b0 a1 b1 ..., in two vectors.
    static Two Interleave(Pixels a, Pixels b) {
        const Pixels even = _mm256_unpacklo_epi64(a, b);  // a0 b0 a2 b2
        const Pixels odd = _mm256_unpackhi_epi64(a, b);   // a1 b1 a3 b3
        return {_mm256_permute2x128_si256(even, odd, 0x20),
                _mm256_permute2x128_si256(even, odd, 0x31)};
    }

    /// Four times as many neighbouring pixels, to take every second or every third of.
    ///
    ///      pixels     | 0 | 1 | 2 | 3 |   | 4 | 5 | 6 | 7 |   | 8 | 9 | 10 | 11 |
    ///      second     | 0 | 4 | 2 | 6 |       unpacked, then permuted
    ///      third      | 0 | 9 | 6 | 3 |       blended, then permuted
    template <int kStride>
    class Comb {
      public:
        explicit Comb(const RGBA16* pixels) : first_(Load(pixels)), second_(Load(pixels + 4)) {
            static_assert(kStride == 2 || kStride == 3);
            if constexpr (kStride == 3) {
                third_ = Load(pixels + 8);
            }
        }

        /// The pixels kFirst, kFirst + kStride, ...
        template <int kFirst>
        Pixels Every() const {
            static_assert(kFirst < kStride);
            if constexpr (kStride == 2) {
                const Pixels unpacked = kFirst == 0 ? _mm256_unpacklo_epi64(first_, second_)
                                                    : _mm256_unpackhi_epi64(first_, second_);
                return _mm256_permute4x64_epi64(unpacked, _MM_SHUFFLE(3, 1, 2, 0));
            } else {
                constexpr int kOfSecond = Places(kFirst, 1);
                constexpr int kOfThird = Places(kFirst, 2);
                constexpr int kOrder =
                    _MM_SHUFFLE((kFirst + 9) % 4, (kFirst + 6) % 4, (kFirst + 3) % 4, kFirst);
                const Pixels early = _mm256_blend_epi32(first_, second_, kOfSecond);
                const Pixels blended = _mm256_blend_epi32(early, third_, kOfThird);
                return _mm256_permute4x64_epi64(blended, kOrder);
            }
        }

      private:
        /// Which 32-bit lanes of a vector (0 to 2) hold every third pixel from `first` on.
        static constexpr int Places(int first, int vector) {
            int places = 0;
            for (int n = 0; n < 4; ++n) {
                const int pixel = first + 3 * n;
                places |= pixel / 4 == vector ? 3 << pixel % 4 * 2 : 0;
            }
            return places;
        }

        Pixels first_;
        Pixels second_;
        [[maybe_unused]] Pixels third_;
    };

    /// Fetches pixels at four ascending indices of a row one by one: faster than a gather on the
    /// processors that lack AVX-512, and no slower between other work than PickOnce.
    class Picker {
      public:
        Picker(const int32_t* indices, int32_t /*width*/) : indices_(indices) {}

        Pixels Pick(const RGBA16* row) const {
            return _mm256_set_m128i(LoadTwo(row + indices_[2], row + indices_[3]),
                                    LoadTwo(row + indices_[0], row + indices_[1]));
        }

      private:
        static __m128i LoadTwo(const RGBA16* low, const RGBA16* high) {
            return _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(low)),
                                      _mm_loadl_epi64(reinterpret_cast<const __m128i*>(high)));
        }

        const int32_t* indices_;
    };

    /// The same, by a load and a permutation where the indices lie so close together that the load
    /// cannot leave the row:
    ///
    ///      row          | p0 | p1 | p2 | p3 |    four pixels from the first index on
    ///      offsets        0    0    1    2       from the first index, ascending
    ///      picked       | p0 | p0 | p1 | p2 |
    static Pixels PickOnce(const RGBA16* row, const int32_t* indices, int32_t width) {
        if (indices[3] - *indices >= 4 || *indices > width - 4) {
            return Picker(indices, width).Pick(row);
        }
        const __m128i all = _mm_loadu_si128(reinterpret_cast<const __m128i*>(indices));
        const __m128i offsets = _mm_sub_epi32(all, _mm_set1_epi32(*indices));
        // Only 32-bit lanes can be permuted: the pixel at offset n is the lanes 2n and 2n + 1,
        // whose numbers stand in the two halves of the pixel's own lane.
        const __m256i low = _mm256_slli_epi64(_mm256_cvtepu32_epi64(offsets), 1);
        const __m256i high = _mm256_add_epi64(low, _mm256_set1_epi64x(1));
        return _mm256_permutevar8x32_epi32(Load(row + *indices),
                                           _mm256_or_si256(low, _mm256_slli_epi64(high, 32)));
    }

  private:
    /// Makes integers the low end of doubles from 2^52 on.
    static Doubles Raise(Pixels bits) {
        const Pixels raise = _mm256_set1_epi64x(0x4330'0000'0000'0000);
        return _mm256_castsi256_pd(_mm256_or_si256(bits, raise));
    }

    static Pixels Pair(Doubles low, Doubles high) {
        const __m128i lows = _mm256_cvttpd_epi32(low);
        const __m128i highs = _mm_slli_epi32(_mm256_cvttpd_epi32(high), 16);
        return _mm256_cvtepu32_epi64(_mm_blend_epi16(lows, highs, 0xAA));
    }
};

}  // namespace
}  // namespace imgbasic
