#include "lib/image/reduce/host_palette_forms.h"
#include "lib/image/simd/vector_run.h"

namespace imgbasic {

void WriteColorsAvx2(RGBA16* row, const RGBA16* colors, const uint8_t* indices, size_t count,
                     Store store) {
    constexpr size_t kStep = 4;
    const VectorRun run = SplitRun(row, count, kStep, store);
    const auto two = [&](size_t i) {
        const __m128i first =
            _mm_loadl_epi64(reinterpret_cast<const __m128i*>(colors + indices[i]));
        const __m128i second =
            _mm_loadl_epi64(reinterpret_cast<const __m128i*>(colors + indices[i + 1]));
        return _mm_unpacklo_epi64(first, second);
    };
    WriteColorsScalar(row, colors, indices, run.begin, Store::Cached);
    for (size_t i = run.begin; i < run.end; i += kStep) {
        StoreVector(row + i, _mm256_set_m128i(two(i + 2), two(i)), run.streaming);
    }
    WriteColorsScalar(row + run.end, colors, indices + run.end, count - run.end, Store::Cached);
    FinishStores(run.streaming);
}

}  // namespace imgbasic
