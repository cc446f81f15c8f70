#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/file_metadata.h"
#include "host/raster_file.h"
#include "host/sample_layout.h"

namespace imgbasic::host {

/// Encodes a picture in a layout in a format other than PNG, with what the system's libraries
/// have for that. `name` names it in errors. Throws FileError.
std::vector<std::byte> EncodeByLibrary(const Picture& picture, const SampleLayout& layout,
                                       const FileMetadata& metadata, RasterFormat format,
                                       const std::string& name, const EncodeOptions& options);

}  // namespace imgbasic::host
