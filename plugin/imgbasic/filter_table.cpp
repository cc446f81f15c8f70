#include "plugin/imgbasic/filter_table.h"

#include "lib/base/ascii.h"
#include "plugin/imgbasic/chan_decomp.h"
#include "plugin/imgbasic/chan_merge.h"
#include "plugin/imgbasic/col_reduce.h"
#include "plugin/imgbasic/gray.h"
#include "plugin/imgbasic/mono.h"
#include "plugin/imgbasic/nega.h"
#include "plugin/imgbasic/scaling.h"

namespace imgbasic {
namespace {

constexpr size_t kLongestName = sizeof("chan_decomp") - 1;

template <typename Process>
std::unique_ptr<ImageProcess> Create() {
    return std::make_unique<Process>();
}

/// Not std::strlen, which would follow a name without an end out of its buffer.
size_t BoundedLength(const char* name) {
    size_t length = 0;
    while (length <= kLongestName && name[length] != '\0') {
        ++length;
    }
    return length;
}

}  // namespace

const std::array<FilterRow, 7> kFilterTable{{
    {"gray", texts::kGray, Create<GrayScaleImageProcess>},
    {"mono", texts::kMono, Create<MonoImageProcess>},
    {"nega", texts::kNega, Create<NegaImageProcess>},
    {"chan_decomp", texts::kChanDecomp, Create<ChannelDecomposeImageProcess>},
    {"chan_merge", texts::kChanMerge, Create<ChannelMergeImageProcess>},
    {"col_reduce", texts::kColReduce, Create<ReduceColorImageProcess>},
    {"scaling", texts::kScaling, Create<ScalingImageProcess>},
}};

std::optional<Filter> FindFilter(const char* name) {
    if (name == nullptr) {
        return std::nullopt;
    }
    const size_t length = BoundedLength(name);
    for (size_t index = 0; index < kFilterTable.size(); ++index) {
        if (EqualIgnoringCase({name, length}, kFilterTable[index].name)) {
            return static_cast<Filter>(index);
        }
    }
    return std::nullopt;
}

}  // namespace imgbasic
