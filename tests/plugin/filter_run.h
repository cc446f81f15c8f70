#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "plugin/imgbasic/process.h"

namespace imgbasic {

constexpr RECT kUntouched{-7, -7, -7, -7};

inline bool Equal(const RECT& a, const RECT& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

/// A filter with what a host hands to it: an image's buffers of exactly its size, so that the
/// address sanitizer sees any step outside, and outputs that begin as kUntouched and zero.
template <typename Process>
struct FilterRun {
    Process process;
    std::vector<RGBA16> src;
    std::vector<RGBA16> merged;
    std::vector<RGBA16> dst;
    RECT outRect = kUntouched;
    uint32_t resultCode = 0;
    uint32_t resultKind = 0;
    char layerName[kLayerNameSize] = {};

    FilterRun(int32_t width, int32_t height, const std::vector<RGBA16>& layer,
              const std::vector<RGBA16>& image)
        : src(layer), merged(image), dst(layer.size()) {
        process.width = width;
        process.height = height;
        process.mergedImage = merged.data();
    }

    ExecuteArgs Args(int32_t layer, int32_t subLayer, const RECT* area) {
        ExecuteArgs args{};
        args.layer = layer;
        args.subLayer = subLayer;
        args.dst = dst.data();
        args.outRect = &outRect;
        args.src = src.data();
        args.inRect = area;
        args.resultCode = &resultCode;
        args.resultKind = &resultKind;
        args.layerName = layerName;
        return args;
    }
};

}  // namespace imgbasic
