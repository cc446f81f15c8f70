#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "host/file_metadata.h"

namespace imgbasic::host {

/// Takes the comments and the resolution in a JPEG's header into `metadata`. A damaged header ends
/// the search.
void ReadJpegHeader(const ReadAt& read, FileMetadata& metadata);

/// A JPEG without metadata becomes one with what the format has a place for of `metadata`.
std::vector<std::byte> WithJpegSegments(std::span<const std::byte> file,
                                        const FileMetadata& metadata);

}  // namespace imgbasic::host
