#include "lib/image/simd/simd.h"

#include <utility>

namespace imgbasic {
namespace {

SimdLevel DetectSimdLevel() {
#if defined(__x86_64__) || defined(_M_X64)
    __builtin_cpu_init();
    const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
                      __builtin_cpu_supports("bmi2");
    const bool avx512 = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");
    if (avx2) {
        return avx512 ? SimdLevel::Avx512 : SimdLevel::Avx2;
    }
#endif
    return SimdLevel::Scalar;
}

SimdLevel& ActiveLevel() {
    static SimdLevel level = SupportedSimdLevel();
    return level;
}

}  // namespace

SimdLevel SupportedSimdLevel() {
    static const SimdLevel level = DetectSimdLevel();
    return level;
}

SimdLevel ActiveSimdLevel() {
    return ActiveLevel();
}

ScopedSimdLevel::ScopedSimdLevel(SimdLevel level) : previous_(std::exchange(ActiveLevel(), level)) {
}

ScopedSimdLevel::~ScopedSimdLevel() {
    ActiveLevel() = previous_;
}

}  // namespace imgbasic
