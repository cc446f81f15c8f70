#pragma once

#include "host/driver.h"

namespace imgbasic::host {

/// Whether each pixel of the result follows from that pixel of the document alone, so that the run
/// may be done in strips: the document is a single plain layer that reaches to all borders.
bool CanRunInStrips(const Document& document, const RunRequest& request);

/// RunFilter, consuming the document, of which a few rows at a time are shown to the filter as an
/// image of their own: the result needs no second picture, and stays in the processor's cache on
/// the way there and back. The document must be one that can be run in strips.
RunOutcome RunInStrips(const Module& module, Document&& document, const RunRequest& request);

}  // namespace imgbasic::host
