#pragma once

#include <cstddef>
#include <vector>

#include "host/document.h"
#include "host/driver.h"

namespace imgbasic::host {

/// A layer or folder as a list shows it.
struct LayerRow {
    LayerAttributes* member;  ///< the document's own
    const Layer* layer;       ///< the same; null for a folder
    LayerPosition position;   ///< of a folder inside a folder, that of the outer one
    size_t depth;             ///< in how many folders it lies
};

/// All layers and folders, topmost first; valid until the document changes.
std::vector<LayerRow> RowsOf(Document& document);

}  // namespace imgbasic::host
