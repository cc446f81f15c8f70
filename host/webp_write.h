#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/sample_layout.h"

namespace imgbasic::host {

/// A WebP of the picture in a layout of 3 or 4 bands of 8 bits, with what the format has
/// a place for of `metadata`; lossless without a `quality`, which is 1 to 100. Fully transparent
/// pixels keep their colour. `name` names it in errors. Throws FileError.
std::vector<std::byte> EncodeWebP(const Picture& picture, const SampleLayout& layout,
                                  const FileMetadata& metadata, std::optional<int> quality,
                                  const std::string& name);

}  // namespace imgbasic::host
