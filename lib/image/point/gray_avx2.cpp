#include "lib/image/point/gray_vectors.h"
#include "lib/image/simd/over_white_avx2.h"

namespace imgbasic {

constinit const GrayRows kGrayRowsAvx2 = GrayRowsInVectors<OverWhiteAvx2>();

}  // namespace imgbasic
