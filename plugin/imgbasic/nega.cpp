#include "plugin/imgbasic/nega.h"

#include "lib/image/point/invert_tones.h"
#include "plugin/imgbasic/target.h"

namespace imgbasic {

bool NegaImageProcess::Execute(const ExecuteArgs& args) {
    return ExecuteOnTarget(*this, args, MergedResult::Silent, InvertTones);
}

const FilterRow& NegaImageProcess::Row() const {
    return kRow<NegaImageProcess>;
}

}  // namespace imgbasic
