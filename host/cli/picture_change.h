#pragma once

#include <string>

#include "host/document.h"

namespace imgbasic::host {

/// What a reduction did to the picture that a document shows: "N colours, mean squared error X".
/// The error is the mean over all pixels and the four channels, colours multiplied by alpha, in
/// squared 8-bit steps. What fully transparent pixels hide counts for neither.
std::string DescribeReduction(const Document& source, const Document& result);

}  // namespace imgbasic::host
