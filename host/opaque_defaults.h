#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/document.h"
#include "host/options.h"

namespace imgbasic::host {

// A drawing's layer may end anywhere, so the module's scaling fades it out at the image's border. A
// photograph would get a translucent or pale frame by that. In hosts of ours a document of a single
// opaque layer has defaults of its own, which do not.

/// An option's default for a single opaque layer; nothing where it is the module's.
std::optional<int32_t> OpaqueDefault(std::string_view option);

/// The options of `filter` with such a default; none when the document is anything but a single
/// opaque layer that covers the image.
std::vector<OptionValue> OpaqueDefaults(std::string_view filter, const Document& document);

}  // namespace imgbasic::host
