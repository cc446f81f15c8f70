#include "plugin/imgbasic/entry.h"

#include <memory>
#include <utility>

#include "plugin/imgbasic/filter_table.h"
#include "plugin/imgbasic/process.h"

using imgbasic::BatchUse;
using imgbasic::CreateFilter;
using imgbasic::ExecuteArgs;
using imgbasic::FilterRow;
using imgbasic::FindFilter;
using imgbasic::ImageProcess;
using imgbasic::RGBA16;

namespace {

/// Runs `operation` for a known name and an object, else answers `otherwise`. An exception must
/// not cross into the host, which may be built by another compiler: it becomes `otherwise` too.
template <typename Result, typename Operation>
Result Forward(const char* name, const void* object, Result otherwise, Operation&& operation) {
    if (FindFilter(name) == nullptr || object == nullptr) {
        return otherwise;
    }
    try {
        return operation();
    } catch (...) {
        return otherwise;
    }
}

}  // namespace

const char* PluginGetName(const char* name) {
    const FilterRow* filter = FindFilter(name);
    return filter != nullptr ? filter->displayName.shiftJis : nullptr;
}

bool ImagePluginIsSizeChange(const char* name) {
    const FilterRow* filter = FindFilter(name);
    return filter != nullptr && filter->changesSize;
}

bool ImagePluginIsBatchEnable(const char* name) {
    const FilterRow* filter = FindFilter(name);
    return filter != nullptr && filter->batch != BatchUse::None;
}

int ImagePluginGetPhase(const char* name) {
    const FilterRow* filter = FindFilter(name);
    return filter != nullptr ? filter->phases : 0;
}

ImageProcess* ImagePluginPrepare2(const char* name, int width, int height, int hostParam,
                                  int curLayer, int curSubLayer, uint32_t drawColor,
                                  uint32_t backColor, uint64_t /*ignored1*/, HWND ownerWindow,
                                  uint64_t /*ignored2*/, ImageProcess* reference) {
    const FilterRow* filter = FindFilter(name);
    if (filter == nullptr) {
        return nullptr;
    }
    auto object = CreateFilter(*filter);
    object->width = width;
    object->height = height;
    object->hostParam = hostParam;
    object->curLayer = curLayer;
    object->curSubLayer = curSubLayer;
    object->drawColor = drawColor;
    object->backColor = backColor;
    object->ownerWindow = ownerWindow;
    object->reference = reference;
    return object.release();
}

ImageProcess* ImagePluginBatchPrepare(const char* name, HWND ownerWindow, int* cancelled) {
    const FilterRow* filter = FindFilter(name);
    if (filter == nullptr) {
        return nullptr;
    }
    auto object = CreateFilter(*filter);
    object->ownerWindow = ownerWindow;
    const int prepared = Forward(name, object.get(), 0, [&] { return object->BatchPrepare(); });
    if (prepared < 0 && cancelled != nullptr) {
        *cancelled = 1;
    }
    return prepared > 0 ? object.release() : nullptr;
}

int ImagePluginDialog(const char* name, ImageProcess* object, bool (*apply)()) {
    return Forward(name, object, 0, [&] { return object->Dialog(apply); });
}

int ImagePluginPhase2(const char* name, ImageProcess* object, int phase, uint32_t* newWidth,
                      uint32_t* newHeight, const uint16_t* mergedImage, uint64_t unused1,
                      uint64_t unused2, uint32_t* phaseFlag) {
    return Forward(name, object, 0, [&] {
        return object->Phase(phase, newWidth, newHeight,
                             reinterpret_cast<const RGBA16*>(mergedImage), unused1, unused2,
                             phaseFlag);
    });
}

bool ImagePluginExecute4(const char* name, ImageProcess* object, int32_t phase, int32_t layer,
                         int32_t subLayer, int32_t unused, RGBA16* dst, RECT* outRect,
                         const RGBA16* src, const RECT* inRect, bool skipPixels,
                         uint32_t* resultCode, uint32_t* resultKind, uint32_t* layerMode,
                         uint32_t* layerOpacity, uint32_t* layerFlag, char* layerName) {
    const ExecuteArgs args{phase,      layer,     subLayer,     unused,     dst,
                           outRect,    src,       inRect,       skipPixels, resultCode,
                           resultKind, layerMode, layerOpacity, layerFlag,  layerName};
    return Forward(name, object, false, [&] { return object->Execute(args); });
}

void ImagePluginAdjustScale(const char* name, void* object, int unused1, int unused2,
                            double* scaleX, double* scaleY) {
    Forward(name, object, false, [&] {
        static_cast<ImageProcess*>(object)->AdjustScale(unused1, unused2, scaleX, scaleY);
        return true;
    });
}

bool ImagePluginAdjustLocate2(const char* name, ImageProcess* object, int index, int layer,
                              int subLayer, double* x, double* y) {
    return Forward(name, object, false,
                   [&] { return object->AdjustLocate(index, layer, subLayer, x, y); });
}

bool ImagePluginDispose(const char* name, ImageProcess* object) {
    return Forward(name, object, false, [&] {
        const std::unique_ptr<ImageProcess> owned(object);
        return owned->Dispose();
    });
}

bool ImagePluginBatchDispose(const char* name, ImageProcess* object) {
    Forward(name, object, true, [&] {
        const std::unique_ptr<ImageProcess> owned(object);
        return owned->BatchDispose();
    });
    return FindFilter(name) != nullptr;
}
