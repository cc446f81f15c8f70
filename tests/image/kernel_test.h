#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>

#include "lib/image/pixels/rgba16.h"
#include "lib/image/simd/simd.h"

namespace imgbasic {

inline void PrintTo(const RGBA16& pixel, std::ostream* out) {
    *out << "(" << pixel.r << ", " << pixel.g << ", " << pixel.b << ", " << pixel.a << ")";
}

/// A suite that runs once for every vector form, which is the active one. Those that this machine
/// cannot run are skipped, visibly. Instantiate with kForms and FormName.
class KernelTest : public testing::TestWithParam<SimdLevel> {
  protected:
    void SetUp() override {
        if (GetParam() > SupportedSimdLevel()) {
            GTEST_SKIP() << "this machine does not run these instructions";
        }
        form_.emplace(GetParam());
    }

  private:
    std::optional<ScopedSimdLevel> form_;
};

inline const auto kForms = testing::Values(SimdLevel::Scalar, SimdLevel::Avx2, SimdLevel::Avx512);

inline std::string FormName(const testing::TestParamInfo<SimdLevel>& form) {
    static constexpr const char* kNames[] = {"Scalar", "Avx2", "Avx512"};
    return kNames[static_cast<int>(form.param)];
}

}  // namespace imgbasic
