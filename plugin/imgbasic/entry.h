#pragma once

#include <cstdint>

#include "lib/base/platform.h"
#include "lib/image/pixels/rgba16.h"

// The module's thirteen exports. Hosts find them at run time; the host-side declaration of their
// types is this header. The Windows module exports them by its .def file.
#ifdef _WIN32
#define IMGBASIC_EXPORT
#else
#define IMGBASIC_EXPORT __attribute__((visibility("default")))
#endif

namespace imgbasic {
class ImageProcess;
}

extern "C" {

/// The filter's Japanese display name, Shift-JIS, the module's own; null for an unknown name.
IMGBASIC_EXPORT const char* PluginGetName(const char* name);
IMGBASIC_EXPORT bool ImagePluginIsSizeChange(const char* name);
IMGBASIC_EXPORT bool ImagePluginIsBatchEnable(const char* name);
/// Number of phases; 0 for an unknown name.
IMGBASIC_EXPORT int ImagePluginGetPhase(const char* name);

/// A new filter object, to be ended by ImagePluginDispose; null for an unknown name. Throws
/// std::bad_alloc. `reference` is borrowed until the object's Dialog has returned.
IMGBASIC_EXPORT imgbasic::ImageProcess* ImagePluginPrepare2(const char* name, int width, int height,
                                                            int hostParam, int curLayer,
                                                            int curSubLayer, uint32_t drawColor,
                                                            uint32_t backColor, uint64_t ignored1,
                                                            HWND ownerWindow, uint64_t ignored2,
                                                            imgbasic::ImageProcess* reference);

/// A new filter object for a batch run with its options settled, to be ended by
/// ImagePluginBatchDispose; null when the name is unknown, the filter has no batch use, another
/// dialog is open, or the user cancelled, which alone stores 1 through `cancelled`. Throws
/// std::bad_alloc.
IMGBASIC_EXPORT imgbasic::ImageProcess* ImagePluginBatchPrepare(const char* name, HWND ownerWindow,
                                                                int* cancelled);

IMGBASIC_EXPORT int ImagePluginDialog(const char* name, imgbasic::ImageProcess* object,
                                      bool (*apply)());
IMGBASIC_EXPORT int ImagePluginPhase2(const char* name, imgbasic::ImageProcess* object, int phase,
                                      uint32_t* newWidth, uint32_t* newHeight,
                                      const uint16_t* mergedImage, uint64_t unused1,
                                      uint64_t unused2, uint32_t* phaseFlag);
IMGBASIC_EXPORT bool ImagePluginExecute4(const char* name, imgbasic::ImageProcess* object,
                                         int32_t phase, int32_t layer, int32_t subLayer,
                                         int32_t unused, imgbasic::RGBA16* dst, RECT* outRect,
                                         const imgbasic::RGBA16* src, const RECT* inRect,
                                         bool skipPixels, uint32_t* resultCode,
                                         uint32_t* resultKind, uint32_t* layerMode,
                                         uint32_t* layerOpacity, uint32_t* layerFlag,
                                         char* layerName);
IMGBASIC_EXPORT bool ImagePluginAdjustLocate2(const char* name, imgbasic::ImageProcess* object,
                                              int index, int layer, int subLayer, double* x,
                                              double* y);

/// Both end the object, which must not be used afterwards.
IMGBASIC_EXPORT bool ImagePluginDispose(const char* name, imgbasic::ImageProcess* object);
IMGBASIC_EXPORT bool ImagePluginBatchDispose(const char* name, imgbasic::ImageProcess* object);

}  // extern "C"

/// Hosts find this one under its decorated C++ name, so it stays outside extern "C".
IMGBASIC_EXPORT void ImagePluginAdjustScale(const char* name, void* object, int unused1,
                                            int unused2, double* scaleX, double* scaleY);
