#ifndef IMGBASIC_HOST_H
#define IMGBASIC_HOST_H

/*
 * What a host in C needs to drive imgbasic: the types of its thirteen functions, which are found by
 * name in the library at run time, and the fields of the filter objects. docs/protocol.md says how
 * they work together, docs/filters.md what the options mean.
 *
 * Buffers, rectangles and objects passed as `reference` stay the host's. Pixels are four 16-bit
 * words, red, green, blue, alpha, of which 0xFF00 is the most; widths, heights and coordinates
 * count pixels. Names of filters and layers are Shift-JIS.
 */

#include <stdbool.h>
#include <stdint.h>

#ifdef _WIN32
#include <windows.h>
#define IMGBASIC_ADJUST_SCALE_NAME "?ImagePluginAdjustScale@@YAXPEBDPEAXHHPEAN2@Z"
typedef HWND imgbasic_window;
typedef RECT imgbasic_rect;
#else
#define IMGBASIC_ADJUST_SCALE_NAME "_Z22ImagePluginAdjustScalePKcPviiPdS2_"
typedef void* imgbasic_window;
/* Right and bottom are exclusive. */
typedef struct {
    int32_t left, top, right, bottom;
} imgbasic_rect;
#endif

/* Runs the filter with the object's options as they are at that moment; false: it failed. */
typedef bool (*imgbasic_apply)(void);

/* What all filter objects begin with. Only TargetType is meant to be set. */
typedef struct imgbasic_process {
    const void* functions;
    int32_t width, height;
    int32_t hostParam;
    int32_t curLayer, curSubLayer;
    uint32_t drawColor, backColor; /* 0x00RRGGBB */
    imgbasic_window ownerWindow;
    imgbasic_apply applyCallback;
    struct imgbasic_process* reference;
    int32_t TargetType; /* 0 merged image, 1 all layers, 2 current layer */
    const uint16_t* mergedImage;
} imgbasic_process;

/* The filter objects with options of their own, by the filter's name. */
typedef struct {
    imgbasic_process process;
    int32_t CalcMode;
    int32_t ColorMode;
} imgbasic_gray;

typedef struct {
    imgbasic_process process;
    int32_t Threshold;
} imgbasic_mono;

typedef struct {
    imgbasic_process process;
    int32_t ReduceColor;
    int32_t DitherType;
    bool SharePalette;
    bool GraduateReduce;
} imgbasic_col_reduce;

typedef struct {
    imgbasic_process process;
    int32_t newWidth, newHeight;
    bool RatioSize;
    int32_t RatioWidth, RatioHeight; /* percent */
    bool FixRatio;
    int32_t InterType;
    int32_t BoundaryType;
    bool BoundAlpha;
    bool ChangeBrush;
    bool skipDialog;
} imgbasic_scaling;

typedef const char* (*PluginGetName_type)(const char* name);
typedef bool (*ImagePluginIsSizeChange_type)(const char* name);
typedef bool (*ImagePluginIsBatchEnable_type)(const char* name);
typedef int (*ImagePluginGetPhase_type)(const char* name);
typedef imgbasic_process* (*ImagePluginPrepare2_type)(
    const char* name, int width, int height, int hostParam, int curLayer, int curSubLayer,
    uint32_t drawColor, uint32_t backColor, uint64_t ignored1, imgbasic_window ownerWindow,
    uint64_t ignored2, imgbasic_process* reference);
typedef imgbasic_process* (*ImagePluginBatchPrepare_type)(const char* name,
                                                          imgbasic_window ownerWindow,
                                                          int* cancelled);
typedef int (*ImagePluginDialog_type)(const char* name, imgbasic_process* object,
                                      imgbasic_apply apply);
typedef int (*ImagePluginPhase2_type)(const char* name, imgbasic_process* object, int phase,
                                      uint32_t* newWidth, uint32_t* newHeight,
                                      const uint16_t* mergedImage, uint64_t unused1,
                                      uint64_t unused2, uint32_t* phaseFlag);
typedef bool (*ImagePluginExecute4_type)(const char* name, imgbasic_process* object, int32_t phase,
                                         int32_t layer, int32_t subLayer, int32_t unused,
                                         uint16_t* dst, imgbasic_rect* outRect, const uint16_t* src,
                                         const imgbasic_rect* inRect, bool skipPixels,
                                         uint32_t* resultCode, uint32_t* resultKind,
                                         uint32_t* layerMode, uint32_t* layerOpacity,
                                         uint32_t* layerFlag, char* layerName);
/* Found under IMGBASIC_ADJUST_SCALE_NAME; the others under their own names. */
typedef void (*ImagePluginAdjustScale_type)(const char* name, void* object, int unused1,
                                            int unused2, double* scaleX, double* scaleY);
typedef bool (*ImagePluginAdjustLocate2_type)(const char* name, imgbasic_process* object, int index,
                                              int layer, int subLayer, double* x, double* y);
typedef bool (*ImagePluginDispose_type)(const char* name, imgbasic_process* object);
typedef bool (*ImagePluginBatchDispose_type)(const char* name, imgbasic_process* object);

#endif
