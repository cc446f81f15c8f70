#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/raster_file.h"

namespace imgbasic::host {

/// The picture, at 8 bits a channel, as a PNG with a palette of exactly its colours; nothing when
/// it has more than 256. `name` names it in errors. Throws FileError.
std::optional<std::vector<std::byte>> EncodeIndexedPng(const Picture& picture,
                                                       const std::string& name);

}  // namespace imgbasic::host
