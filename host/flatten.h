#pragma once

#include <string>
#include <vector>

#include "host/document.h"

namespace imgbasic::host {

/// One pixel joined onto what is below it, both with straight alpha: source-over and plus by the
/// alpha compositing of Porter and Duff (1984), each channel the exact quotient rounded to the
/// nearest; the other kinds as Blend and Operate do it. The colour that a fully transparent pixel
/// hides survives only over (0, 0, 0, 0).
RGBA16 Composite(RGBA16 source, CompositionKind kind, RGBA16 backdrop);

/// The picture that the document shows: visible items composed bottom to top over transparency,
/// width x height pixels.
///
/// An unclipped layer and the clipped ones directly above it are composed by themselves on the
/// lowest one's pixels, whose alpha stays, and join the rest with its opacity and kind. A clipped
/// layer at the very bottom has nothing to limit it and counts as unclipped. A hidden layer hides
/// what is clipped to it. A folder composes what it holds and then is like a layer.
///
/// A single normal layer at 100 percent flattens to its own pixels, the colours that fully
/// transparent ones hide included.
std::vector<RGBA16> Flatten(const Document& document);

/// What Flatten shows otherwise than its file means it: one phrase for each visible layer or
/// folder of CompositionKind::Other.
std::vector<std::string> NotDrawn(const Document& document);

}  // namespace imgbasic::host
