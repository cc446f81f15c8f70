#pragma once

#include "lib/image/point/mono.h"

namespace imgbasic {

using ToTwoLevelsForm = void(RGBA16* dst, const RGBA16* src, size_t count, int32_t level,
                             Store store);

ToTwoLevelsForm ToTwoLevelsScalar;
ToTwoLevelsForm ToTwoLevelsAvx2;
ToTwoLevelsForm ToTwoLevelsAvx512;

}  // namespace imgbasic
