#pragma once

#include <string_view>
#include <vector>

#include "host/driver.h"

namespace imgbasic::host {

/// Whether each pixel of the filter's result follows from that pixel of the image alone, so that a
/// run over strips of whole rows is the run over the image.
bool WorksByPixel(std::string_view filter);

/// Runs such a filter over rows of `width` pixels as an image of their own, in place. Throws
/// RunError when that fails. Returns the milliseconds of the run.
double RunOnRows(const Module& module, std::vector<RGBA16>& rows, int32_t width,
                 const RunRequest& request);

/// Whether a document may be run in strips: it is a single plain layer that reaches to all borders,
/// and the filter works by pixel.
bool CanRunInStrips(const Document& document, const RunRequest& request);

/// RunFilter, consuming the document, of which a few rows at a time are shown to the filter as an
/// image of their own: the result needs no second picture, and stays in the processor's cache on
/// the way there and back. The document must be one that can be run in strips.
RunOutcome RunInStrips(const Module& module, Document&& document, const RunRequest& request);

}  // namespace imgbasic::host
