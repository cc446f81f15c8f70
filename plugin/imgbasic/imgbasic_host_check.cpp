// The C header for hosts says of the objects and the exports what is true of them.

#include <cstddef>
#include <type_traits>

#include "plugin/imgbasic/col_reduce.h"
#include "plugin/imgbasic/entry.h"
#include "plugin/imgbasic/gray.h"
#include "plugin/imgbasic/imgbasic_host.h"
#include "plugin/imgbasic/mono.h"
#include "plugin/imgbasic/scaling.h"

// The standard leaves offsets in classes with virtual functions to the compiler, which knows them.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

namespace imgbasic {
namespace {

/// A field, parameter or result is the same in C: pointers may differ in what they point to.
template <typename InC, typename InCpp>
constexpr bool kAlike = std::is_same_v<InC, InCpp> ||
                        (std::is_pointer_v<InC> && std::is_pointer_v<InCpp>);

#define IMGBASIC_SAME_FIELD(structure, Class, field)                      \
    static_assert(offsetof(structure, field) == offsetof(Class, field) && \
                  kAlike<decltype(structure::field), decltype(Class::field)>)

IMGBASIC_SAME_FIELD(imgbasic_process, ImageProcess, width);
IMGBASIC_SAME_FIELD(imgbasic_process, ImageProcess, height);
IMGBASIC_SAME_FIELD(imgbasic_process, ImageProcess, hostParam);
IMGBASIC_SAME_FIELD(imgbasic_process, ImageProcess, curLayer);
IMGBASIC_SAME_FIELD(imgbasic_process, ImageProcess, curSubLayer);
IMGBASIC_SAME_FIELD(imgbasic_process, ImageProcess, drawColor);
IMGBASIC_SAME_FIELD(imgbasic_process, ImageProcess, backColor);
IMGBASIC_SAME_FIELD(imgbasic_process, ImageProcess, ownerWindow);
IMGBASIC_SAME_FIELD(imgbasic_process, ImageProcess, applyCallback);
IMGBASIC_SAME_FIELD(imgbasic_process, ImageProcess, reference);
IMGBASIC_SAME_FIELD(imgbasic_process, ImageProcess, TargetType);
IMGBASIC_SAME_FIELD(imgbasic_process, ImageProcess, mergedImage);
static_assert(sizeof(imgbasic_process) == sizeof(ImageProcess));

IMGBASIC_SAME_FIELD(imgbasic_gray, GrayScaleImageProcess, CalcMode);
IMGBASIC_SAME_FIELD(imgbasic_gray, GrayScaleImageProcess, ColorMode);
static_assert(sizeof(imgbasic_gray) == sizeof(GrayScaleImageProcess));

IMGBASIC_SAME_FIELD(imgbasic_mono, MonoImageProcess, Threshold);
static_assert(sizeof(imgbasic_mono) == sizeof(MonoImageProcess));

IMGBASIC_SAME_FIELD(imgbasic_col_reduce, ReduceColorImageProcess, ReduceColor);
IMGBASIC_SAME_FIELD(imgbasic_col_reduce, ReduceColorImageProcess, DitherType);
IMGBASIC_SAME_FIELD(imgbasic_col_reduce, ReduceColorImageProcess, SharePalette);
IMGBASIC_SAME_FIELD(imgbasic_col_reduce, ReduceColorImageProcess, GraduateReduce);

IMGBASIC_SAME_FIELD(imgbasic_scaling, ScalingImageProcess, newWidth);
IMGBASIC_SAME_FIELD(imgbasic_scaling, ScalingImageProcess, newHeight);
IMGBASIC_SAME_FIELD(imgbasic_scaling, ScalingImageProcess, RatioSize);
IMGBASIC_SAME_FIELD(imgbasic_scaling, ScalingImageProcess, RatioWidth);
IMGBASIC_SAME_FIELD(imgbasic_scaling, ScalingImageProcess, RatioHeight);
IMGBASIC_SAME_FIELD(imgbasic_scaling, ScalingImageProcess, FixRatio);
IMGBASIC_SAME_FIELD(imgbasic_scaling, ScalingImageProcess, InterType);
IMGBASIC_SAME_FIELD(imgbasic_scaling, ScalingImageProcess, BoundaryType);
IMGBASIC_SAME_FIELD(imgbasic_scaling, ScalingImageProcess, BoundAlpha);
IMGBASIC_SAME_FIELD(imgbasic_scaling, ScalingImageProcess, ChangeBrush);
IMGBASIC_SAME_FIELD(imgbasic_scaling, ScalingImageProcess, skipDialog);
static_assert(sizeof(imgbasic_scaling) == sizeof(ScalingImageProcess));

template <typename ResultInC, typename... InC, typename ResultInCpp, typename... InCpp>
constexpr bool AreAlike(ResultInC (*)(InC...), ResultInCpp (*)(InCpp...)) {
    if constexpr (sizeof...(InC) == sizeof...(InCpp)) {
        return kAlike<ResultInC, ResultInCpp> && (kAlike<InC, InCpp> && ...);
    }
    return false;
}

#define IMGBASIC_SAME_FUNCTION(name) static_assert(AreAlike(name##_type{}, &(name)))

IMGBASIC_SAME_FUNCTION(PluginGetName);
IMGBASIC_SAME_FUNCTION(ImagePluginIsSizeChange);
IMGBASIC_SAME_FUNCTION(ImagePluginIsBatchEnable);
IMGBASIC_SAME_FUNCTION(ImagePluginGetPhase);
IMGBASIC_SAME_FUNCTION(ImagePluginPrepare2);
IMGBASIC_SAME_FUNCTION(ImagePluginBatchPrepare);
IMGBASIC_SAME_FUNCTION(ImagePluginDialog);
IMGBASIC_SAME_FUNCTION(ImagePluginPhase2);
IMGBASIC_SAME_FUNCTION(ImagePluginExecute4);
IMGBASIC_SAME_FUNCTION(ImagePluginAdjustScale);
IMGBASIC_SAME_FUNCTION(ImagePluginAdjustLocate2);
IMGBASIC_SAME_FUNCTION(ImagePluginDispose);
IMGBASIC_SAME_FUNCTION(ImagePluginBatchDispose);

}  // namespace
}  // namespace imgbasic
