#include "lib/image/point/mono_vectors.h"
#include "lib/image/simd/over_white_avx2.h"

namespace imgbasic {

void ToTwoLevelsAvx2(RGBA16* dst, const RGBA16* src, size_t count, int32_t level, Store store) {
    ToTwoLevelsInVectors<OverWhiteAvx2>(dst, src, count, level, store);
}

}  // namespace imgbasic
