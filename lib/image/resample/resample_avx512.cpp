#include "lib/image/resample/doubled_lanes.h"
#include "lib/image/simd/pixel_lanes_avx512.h"

namespace imgbasic {

void NearestRowAvx512(const NearestRow& row, size_t begin, size_t end) {
    DrawColumns<Avx512Lanes::kCount>(row, begin, end, NearestLanes<Avx512Lanes>, NearestRowScalar);
}

void AverageRowAvx512(const AverageRow& row, size_t begin, size_t end) {
    DrawColumns<Avx512Lanes::kCount>(row, begin, end, AverageLanes<Avx512Lanes>, AverageRowScalar);
}

void BilinearRowAvx512(const BilinearRow& row, size_t begin, size_t end) {
    if (row.doubled != nullptr) {
        DrawDoubled<Avx512Lanes>(row, begin, end);
    } else {
        DrawBilinear<Avx512Lanes>(row, begin, end);
    }
}

}  // namespace imgbasic
