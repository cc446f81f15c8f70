#include "plugin/imgbasic/mono.h"

#include "lib/image/point/mono.h"
#include "plugin/imgbasic/target.h"

namespace imgbasic {

bool MonoImageProcess::Execute(const ExecuteArgs& args) {
    // A threshold no dialog would give wraps here, as the shift defines it.
    const int32_t level = Threshold << 8;
    return ExecuteOnTarget(*this, args, MergedResult::Announced,
                           [level](RGBA16* dst, const RGBA16* src, size_t count, Store store) {
                               ToTwoLevels(dst, src, count, level, store);
                           });
}

const FilterRow& MonoImageProcess::Row() const {
    return kRow<MonoImageProcess>;
}

}  // namespace imgbasic
