#include "lib/image/point/gray_vectors.h"
#include "lib/image/simd/over_white_avx512.h"

namespace imgbasic {

constinit const GrayRows kGrayRowsAvx512 = GrayRowsInVectors<OverWhiteAvx512>();

}  // namespace imgbasic
