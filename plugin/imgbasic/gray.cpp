#include "plugin/imgbasic/gray.h"

#include <iterator>

#include "lib/image/point/gray.h"
#include "plugin/imgbasic/target.h"

namespace imgbasic {
namespace {

/// 0x00RRGGBB; black for a ColorMode that is none.
uint32_t TintOf(const GrayScaleImageProcess& process) {
    const uint32_t tints[] = {
        0xFFFFFF,           // white
        0xFF0000,           // red
        0x00FF00,           // green
        0x0000FF,           // blue
        0xFF00FF,           // magenta
        0x00FFFF,           // cyan
        0xFFFF00,           // yellow
        process.drawColor,  // the host's drawing colour
        process.backColor,  // the host's background colour
    };
    const auto mode = static_cast<uint32_t>(process.ColorMode);
    return mode < std::size(tints) ? tints[mode] : 0;
}

}  // namespace

bool GrayScaleImageProcess::Execute(const ExecuteArgs& args) {
    GrayRow& row = GrayRowFor(CalcMode);
    const uint32_t tint = TintOf(*this);
    return ExecuteOnTarget(*this, args, MergedResult::Announced,
                           [&](RGBA16* dst, const RGBA16* src, size_t count, Store store) {
                               row(dst, src, count, tint, store);
                           });
}

const FilterRow& GrayScaleImageProcess::Row() const {
    return kRow<GrayScaleImageProcess>;
}

}  // namespace imgbasic
