#include "lib/image/resample/doubled_lanes.h"
#include "lib/image/simd/pixel_lanes_avx2.h"

namespace imgbasic {

void NearestRowAvx2(const NearestRow& row, size_t begin, size_t end) {
    DrawColumns<Avx2Lanes::kCount>(row, begin, end, NearestLanes<Avx2Lanes>, NearestRowScalar);
}

void AverageRowAvx2(const AverageRow& row, size_t begin, size_t end) {
    DrawColumns<Avx2Lanes::kCount>(row, begin, end, AverageLanes<Avx2Lanes>, AverageRowScalar);
}

void BilinearRowAvx2(const BilinearRow& row, size_t begin, size_t end) {
    if (row.doubled != nullptr) {
        DrawDoubled<Avx2Lanes>(row, begin, end);
    } else {
        DrawBilinear<Avx2Lanes>(row, begin, end);
    }
}

}  // namespace imgbasic
