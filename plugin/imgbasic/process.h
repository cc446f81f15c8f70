#pragma once

#include <cstdint>

#include "lib/base/platform.h"
#include "lib/image/pixels/pixel_rect.h"
#include "lib/image/pixels/rgba16.h"

namespace imgbasic {

/// A host function that runs the filter now with the object's current options.
/// Returns false when that run failed or was abandoned.
using ApplyCallback = bool (*)();

/// Values of ImageProcess::TargetType; any other value acts as MergedImage.
enum TargetKind : int32_t { MergedImage = 0, AllLayers = 1, CurrentLayer = 2 };

/// Bytes in the host's layer name buffer (Shift-JIS).
constexpr int kLayerNameSize = 64;

/// What the host hands to one Execute call. Buffers hold the whole image, the object's `width`
/// pixels a row; every pointer is the host's and may be null.
struct ExecuteArgs {
    int32_t phase;
    int32_t layer;     ///< top-level item, 0 on top
    int32_t subLayer;  ///< layer inside that item; -1 for the item itself
    int32_t unused;
    RGBA16* dst;
    RECT* outRect;  ///< out: what was written
    const RGBA16* src;
    const RECT* inRect;      ///< the layer's area; null when there is nothing to process
    bool skipPixels;         ///< report the result's size only
    uint32_t* resultCode;    ///< out: 1 the item is used up, 2 `dst` is a new layer
    uint32_t* resultKind;    ///< out: 1 `dst` is the merged result
    uint32_t* layerMode;     ///< out: composition kind
    uint32_t* layerOpacity;  ///< in and out, percent
    uint32_t* layerFlag;     ///< out: 1 clips to the layer below
    char* layerName;         ///< in and out, kLayerNameSize bytes
};

/// A filter between its creation and its disposal: the options, what the host told at creation,
/// and the operations through which the host drives it. The host owns the object and every
/// buffer; everything happens on the host's user-interface thread.
class ImageProcess {
  public:
    ImageProcess() = default;
    ImageProcess(const ImageProcess&) = delete;
    ImageProcess& operator=(const ImageProcess&) = delete;

    virtual ~ImageProcess() = default;
    /// Settles the options for a batch run: 1 go on, -1 cancelled, 0 no batch use, or another
    /// dialog is open.
    virtual int BatchPrepare() = 0;
    virtual bool BatchDispose() = 0;
    /// Settles the options interactively: 1 confirmed, -1 cancelled, 0 refused by `apply`, or since
    /// another dialog is open.
    virtual int Dialog(ApplyCallback apply) = 0;
    /// Begins a phase: 1 go on, -1 nothing to do, 0 impossible, -2 failed after a message.
    virtual int Phase(int phase, uint32_t* newWidth, uint32_t* newHeight, const RGBA16* merged,
                      uint64_t unused1, uint64_t unused2, uint32_t* phaseFlag) = 0;
    /// Processes one item; false leaves it as it was.
    virtual bool Execute(const ExecuteArgs& args) = 0;
    /// Replaces the host's brush scale factors by those of the size change.
    virtual void AdjustScale(int unused1, int unused2, double* scaleX, double* scaleY);
    virtual bool AdjustLocate(int index, int layer, int subLayer, double* x, double* y) = 0;
    /// Releases what a run allocated.
    virtual bool Dispose() = 0;

    // The defaults are those of a batch object, to which the host tells nothing.
    int32_t width = 0;  ///< pixels; the row stride of every buffer
    int32_t height = 0;
    int32_t hostParam = 0;
    int32_t curLayer = 0;
    int32_t curSubLayer = -1;  ///< -1 when the layer itself is current
    uint32_t drawColor = 0;    ///< 0x00RRGGBB
    uint32_t backColor = 0;    ///< 0x00RRGGBB
    HWND ownerWindow = nullptr;
    ApplyCallback applyCallback = nullptr;
    ImageProcess* reference = nullptr;  ///< same class, borrowed: its options serve a repeat
    int32_t TargetType = MergedImage;
    const RGBA16* mergedImage = nullptr;  ///< the flattened image of this phase, the host's

  protected:
    /// The Phase of every filter that only needs the merged image.
    int KeepMergedImage(const RGBA16* merged);

    /// Runs the filter at once, without a dialog, through applyCallback: 1, or 0 when refused.
    int ApplyNow() const;
};

/// Reports inRect as the area written, although no pixel of it needs to change.
inline void PassRect(const ExecuteArgs& args) {
    if (args.outRect != nullptr && args.inRect != nullptr) {
        *args.outRect = *args.inRect;
    }
}

/// Stores through an out-pointer that the host may have left null.
inline void StoreThrough(uint32_t* out, uint32_t value) {
    if (out != nullptr) {
        *out = value;
    }
}

/// The part of the host's rectangle that lies inside the object's image.
inline PixelRect ClippedTo(const ImageProcess& process, const RECT& rect) {
    return ClipToImage({rect.left, rect.top, rect.right, rect.bottom}, process.width,
                       process.height);
}

}  // namespace imgbasic
