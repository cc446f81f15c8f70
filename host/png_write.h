#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/sample_layout.h"

namespace imgbasic::host {

/// A PNG of the picture in a layout, with `metadata`. `zlibLevel` is 0 to 9. `name` names it in
/// errors. Throws FileError.
std::vector<std::byte> EncodePng(const Picture& picture, const SampleLayout& layout,
                                 const FileMetadata& metadata, int zlibLevel,
                                 const std::string& name);

}  // namespace imgbasic::host
