#include "lib/image/reduce/work_bitmap.h"

#include <algorithm>
#include <new>

#include "lib/image/palette/color_rows.h"

namespace imgbasic {
namespace {

size_t RowStart(int32_t width, PixelRect rect, int32_t row) {
    return (static_cast<size_t>(rect.top) + static_cast<size_t>(row)) * static_cast<size_t>(width) +
           static_cast<size_t>(rect.left);
}

}  // namespace

std::unique_ptr<KVBitmap> MakeWorkBitmap(const RGBA16* buffer, int32_t width, PixelRect rect) {
    std::unique_ptr<KVBitmap> bitmap(new (std::nothrow)
                                         KVBitmap(rect.right - rect.left, rect.bottom - rect.top));
    if (bitmap == nullptr || !bitmap->EnsurePixels()) {
        return nullptr;
    }
    uint32_t* word = bitmap->Words().data();
    for (int32_t row = 0; row < bitmap->Height(); ++row) {
        const RGBA16* first = buffer + RowStart(width, rect, row);
        word = std::transform(first, first + bitmap->Width(), word, WorkWord);
    }
    return bitmap;
}

}  // namespace imgbasic
