#pragma once

#include <vector>

#include "host/document.h"

namespace imgbasic::host {

/// The picture that the document shows: visible items composed bottom to top over transparency,
/// width x height pixels.
std::vector<RGBA16> Flatten(const Document& document);

}  // namespace imgbasic::host
