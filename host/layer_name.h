#pragma once

#include <array>
#include <string>
#include <string_view>

#include "plugin/imgbasic/process.h"

namespace imgbasic::host {

/// A layer's name at the module's door: Shift-JIS, zero-filled behind the name.
using LayerNameBytes = std::array<char, kLayerNameSize>;

/// A document's name (UTF-8) for the module, cut at a character where it is too long.
LayerNameBytes NameForModule(std::string_view name);

/// The document's name after the module turned `before`, which was `name`, into `after`. Where
/// the module only put a tag of three bytes such as "[R]" before the name, or took one away, the
/// same is done to `name`, so that what the bytes could not hold is not lost.
std::string NameFromModule(const std::string& name, const LayerNameBytes& before,
                           const LayerNameBytes& after);

}  // namespace imgbasic::host
