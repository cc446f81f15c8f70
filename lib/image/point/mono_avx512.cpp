#include "lib/image/point/mono_vectors.h"
#include "lib/image/simd/over_white_avx512.h"

namespace imgbasic {

void ToTwoLevelsAvx512(RGBA16* dst, const RGBA16* src, size_t count, int32_t level, Store store) {
    ToTwoLevelsInVectors<OverWhiteAvx512>(dst, src, count, level, store);
}

}  // namespace imgbasic
