#pragma once

namespace imgbasic {

/// The instruction sets that kernels are written for, each including the one before.
/// Scalar is the baseline of the target processor and the definition of every kernel.
enum class SimdLevel {
    Scalar,
    Avx2,    ///< with FMA and BMI2
    Avx512,  ///< with F, BW, DQ and VL
};

/// The best level that this processor and operating system run.
SimdLevel SupportedSimdLevel();

/// The level that kernels use: the supported one, unless a test forces a lower one.
SimdLevel ActiveSimdLevel();

/// Forces a level while it lives, so that tests and benchmarks can compare forms.
class ScopedSimdLevel {
  public:
    /// `level` must not be above SupportedSimdLevel().
    explicit ScopedSimdLevel(SimdLevel level);
    ~ScopedSimdLevel();
    ScopedSimdLevel(const ScopedSimdLevel&) = delete;
    ScopedSimdLevel& operator=(const ScopedSimdLevel&) = delete;

  private:
    SimdLevel previous_;
};

/// The forms of one kernel. A form that is null is not worth having: the next lower one serves.
template <typename Function>
struct KernelForms {
    Function* scalar;
    Function* avx2 = nullptr;
    Function* avx512 = nullptr;

    Function& Active() const {
        const SimdLevel level = ActiveSimdLevel();
        if (level >= SimdLevel::Avx512 && avx512 != nullptr) {
            return *avx512;
        }
        return level >= SimdLevel::Avx2 && avx2 != nullptr ? *avx2 : *scalar;
    }
};

// The x86 forms are built for that processor only; elsewhere their place in the table is null.
#if defined(__x86_64__) || defined(_M_X64)
#define IMGBASIC_X86_FORM(function) (function)
#else
#define IMGBASIC_X86_FORM(function) nullptr
#endif

}  // namespace imgbasic
