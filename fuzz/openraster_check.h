#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "host/document.h"

namespace imgbasic {

/// Reads `data` as an archive or, when it does not begin as one, as the stack.xml of an archive in
/// which data/a.png and data/b.png are pictures. A document that is read is written and read again,
/// as it is and with a change to its layers. Returns what differs, empty when nothing does or the
/// file is rejected.
std::string CheckOpenRaster(std::span<const uint8_t> data);

/// Whether a document is the same once it is written and read again.
bool ComesBack(const host::Document& document);

}  // namespace imgbasic
