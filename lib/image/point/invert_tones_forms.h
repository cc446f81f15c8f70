#pragma once

#include "lib/image/point/invert_tones.h"

namespace imgbasic {

using InvertTonesForm = void(RGBA16* dst, const RGBA16* src, size_t count, Store store);

InvertTonesForm InvertTonesScalar;
InvertTonesForm InvertTonesAvx2;

}  // namespace imgbasic
