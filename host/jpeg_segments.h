#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "host/file_metadata.h"

namespace imgbasic::host {

/// Reads up to `size` bytes from `position` of a file; fewer at its end.
using ReadAt = std::function<std::string(int64_t position, size_t size)>;

/// Takes the comments and the density of a JPEG's header into `metadata`, by which the file alone
/// tells that it has no unit of density. A damaged header ends the search.
void ReadJpegHeader(const ReadAt& read, FileMetadata& metadata);

/// A JPEG without metadata becomes one with what the format has a place for of `metadata`.
std::vector<std::byte> WithJpegSegments(std::span<const std::byte> file,
                                        const FileMetadata& metadata);

}  // namespace imgbasic::host
