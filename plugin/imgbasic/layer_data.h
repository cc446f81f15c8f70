#pragma once

#include <cstdint>

#include "lib/base/kv_string.h"
#include "lib/image/pixels/pixel_rect.h"

namespace imgbasic {

/// One layer as the host showed it.
class LayerData {
  public:
    LayerData() = default;
    LayerData(const LayerData&) = default;
    LayerData& operator=(const LayerData&) = default;
    virtual ~LayerData() = default;

    KVString name;         ///< Shift-JIS
    int32_t index = 0;     ///< top-level item, 0 on top
    int32_t subIndex = 0;  ///< layer inside that item; negative for the item itself
    PixelRect rect;        ///< where its pixels are, as the host gave it
};

}  // namespace imgbasic
