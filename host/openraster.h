#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/document.h"

namespace imgbasic::host {

// OpenRaster: a zip archive of stack.xml and one PNG a layer. CompositionKind::Additive is
// svg:plus, both normal kinds are svg:src-over and come back as CompositionKind::Normal, the clip
// flag is alpha-preserve, a folder is a nested stack.

/// The attribute of the image element that tells the source's depth, since the layers always
/// have 16 bits a channel.
constexpr char kOpenRasterDepthAttribute[] = "imgbasic-bit-depth";

/// Reads the file at `path`. What lies outside the image is dropped; a stack inside a folder
/// becomes one layer, as it looks. What is shown otherwise than the file means it is told in
/// `notes`. Throws FileError.
Document ReadOpenRaster(const std::string& path, std::vector<std::string>& notes);

/// The bytes of an archive of the layers, the picture that they give together at `bitDepth`
/// bits a channel, and a thumbnail. The same document always gives the same bytes. `name` names
/// it in errors. Throws FileError.
std::vector<std::byte> EncodeOpenRaster(const Document& document, int bitDepth,
                                        const std::string& name);

}  // namespace imgbasic::host
