#include "plugin/imgbasic/settings.h"

#include <cstring>
#include <variant>

#include "plugin/imgbasic/col_reduce.h"
#include "plugin/imgbasic/gray.h"
#include "plugin/imgbasic/mono.h"
#include "plugin/imgbasic/nega.h"
#include "plugin/imgbasic/scaling.h"

namespace imgbasic {
namespace {

/// How much a stored value has to get right before it counts.
enum class Loading {
    Lenient,  ///< whatever bytes there are, then corrected
    Strict    ///< only a whole number within the bounds
};

template <typename Process>
struct Setting {
    const char* name;
    std::variant<int32_t Process::*, bool Process::*> field;
    uint32_t low = 0;
    uint32_t high = 1;
    uint32_t otherwise = 0;  ///< lenient: what a number out of bounds becomes
};

template <typename Process>
struct Settings;

template <>
struct Settings<NegaImageProcess> {
    static constexpr const char* kFilter = "nega";
    static constexpr Loading kLoading = Loading::Lenient;
    static constexpr Setting<NegaImageProcess> kRows[] = {
        {"TargetType", &NegaImageProcess::TargetType, 0, 2, 0},
    };
};

template <>
struct Settings<GrayScaleImageProcess> {
    static constexpr const char* kFilter = "gray";
    static constexpr Loading kLoading = Loading::Lenient;
    static constexpr Setting<GrayScaleImageProcess> kRows[] = {
        {"CalcMode", &GrayScaleImageProcess::CalcMode, 0, 9, 0},
        {"ColorMode", &GrayScaleImageProcess::ColorMode, 0, 8, 0},
        {"TargetType", &GrayScaleImageProcess::TargetType, 0, 2, 0},
    };
};

template <>
struct Settings<MonoImageProcess> {
    static constexpr const char* kFilter = "mono";
    static constexpr Loading kLoading = Loading::Lenient;
    static constexpr Setting<MonoImageProcess> kRows[] = {
        {"Threshold", &MonoImageProcess::Threshold, 1, 255, 128},
        {"TargetType", &MonoImageProcess::TargetType, 0, 2, 0},
    };
};

template <>
struct Settings<ReduceColorImageProcess> {
    static constexpr const char* kFilter = "col_reduce";
    static constexpr Loading kLoading = Loading::Lenient;
    static constexpr Setting<ReduceColorImageProcess> kRows[] = {
        {"ReduceColor", &ReduceColorImageProcess::ReduceColor, 1, 256, 16},
        // The only one that becomes its largest value.
        {"DitherType", &ReduceColorImageProcess::DitherType, 0, 3, 3},
        {"TargetType", &ReduceColorImageProcess::TargetType, 0, 2, 0},
        {"SharePalette", &ReduceColorImageProcess::SharePalette},
        {"GraduateReduce", &ReduceColorImageProcess::GraduateReduce},
    };
};

template <>
struct Settings<ScalingImageProcess> {
    static constexpr const char* kFilter = "scaling";
    static constexpr Loading kLoading = Loading::Strict;
    static constexpr Setting<ScalingImageProcess> kRows[] = {
        {"RatioSize", &ScalingImageProcess::RatioSize},
        // One pixel enlarged to 8192.
        {"RatioWidth", &ScalingImageProcess::RatioWidth, 1, 819200},
        {"RatioHeight", &ScalingImageProcess::RatioHeight, 1, 819200},
        {"FixRatio", &ScalingImageProcess::FixRatio},
        {"InterType", &ScalingImageProcess::InterType, 0, 2},
        {"BoundaryType", &ScalingImageProcess::BoundaryType, 0, 2},
        {"BoundAlpha", &ScalingImageProcess::BoundAlpha},
        {"ChangeBrush", &ScalingImageProcess::ChangeBrush},
    };
};

template <typename Process>
std::vector<StoredNumber> NamedValues() {
    std::vector<StoredNumber> values;
    for (const auto& row : Settings<Process>::kRows) {
        values.push_back({row.name});
    }
    return values;
}

/// `before` with its lowest bytes replaced by those that are stored.
uint32_t Overlaid(uint32_t before, const StoredNumber& stored) {
    const uint64_t kept = ~uint64_t{0} << (8 * stored.size);
    return static_cast<uint32_t>((before & kept) | (stored.number & ~kept));
}

template <typename Process>
void LoadRow(Process& process, const Setting<Process>& row, const StoredNumber& stored) {
    constexpr bool kStrict = Settings<Process>::kLoading == Loading::Strict;
    const auto* number = std::get_if<int32_t Process::*>(&row.field);
    if (number == nullptr) {
        // A lenient flag that is missing is off.
        const uint32_t flag = Overlaid(0, stored);
        if (flag <= 1 && (!kStrict || stored.size == sizeof flag)) {
            process.*std::get<bool Process::*>(row.field) = flag != 0;
        }
        return;
    }
    int32_t& field = process.**number;
    const uint32_t loaded = Overlaid(static_cast<uint32_t>(field), stored);
    const bool valid = loaded >= row.low && loaded <= row.high;
    if (!kStrict) {
        field = static_cast<int32_t>(valid ? loaded : row.otherwise);
    } else if (valid && stored.size == sizeof loaded) {
        field = static_cast<int32_t>(loaded);
    }
}

template <typename Process>
bool AppendStored(const char* filter, std::vector<StoredNumber>& found) {
    if (std::strcmp(filter, Settings<Process>::kFilter) != 0) {
        return false;
    }
    found = NamedValues<Process>();
    QueryStore(filter, found);
    std::erase_if(found, [](const StoredNumber& value) { return value.size == 0; });
    return true;
}

}  // namespace

template <typename Process>
void LoadSettings(Process& process) {
    std::vector<StoredNumber> stored = NamedValues<Process>();
    if (!QueryStore(Settings<Process>::kFilter, stored)) {
        return;
    }
    size_t index = 0;
    for (const auto& row : Settings<Process>::kRows) {
        LoadRow(process, row, stored[index++]);
    }
}

template <typename Process>
void SaveSettings(const Process& process) {
    std::vector<StoredNumber> values;
    for (const auto& row : Settings<Process>::kRows) {
        const auto number = std::visit(
            [&](auto field) { return static_cast<uint32_t>(process.*field); }, row.field);
        values.push_back({row.name, number, sizeof number});
    }
    WriteStore(Settings<Process>::kFilter, values);
}

std::vector<StoredNumber> ListSettings(const char* filter) {
    std::vector<StoredNumber> found;
    AppendStored<NegaImageProcess>(filter, found) ||
        AppendStored<GrayScaleImageProcess>(filter, found) ||
        AppendStored<MonoImageProcess>(filter, found) ||
        AppendStored<ReduceColorImageProcess>(filter, found) ||
        AppendStored<ScalingImageProcess>(filter, found);
    return found;
}

template void LoadSettings(NegaImageProcess&);
template void LoadSettings(GrayScaleImageProcess&);
template void LoadSettings(MonoImageProcess&);
template void LoadSettings(ReduceColorImageProcess&);
template void LoadSettings(ScalingImageProcess&);
template void SaveSettings(const NegaImageProcess&);
template void SaveSettings(const GrayScaleImageProcess&);
template void SaveSettings(const MonoImageProcess&);
template void SaveSettings(const ReduceColorImageProcess&);
template void SaveSettings(const ScalingImageProcess&);

}  // namespace imgbasic
