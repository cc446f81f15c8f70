#pragma once

#include "host/document.h"

namespace imgbasic::host {

/// One pixel joined onto another by a kind beyond source-over and plus, both with straight alpha
/// and neither fully transparent: the blend modes and the Porter-Duff operators of the W3C's
/// "Compositing and Blending Level 1" (2015). Every channel is rounded to the nearest once; the
/// separable modes but soft-light are computed exactly before that, the others in double
/// precision.
RGBA16 Blend(RGBA16 source, CompositionKind kind, RGBA16 backdrop);

/// Whether the kind changes the backdrop also where the source is fully transparent.
constexpr bool ReachesBeyondSource(CompositionKind kind) {
    return kind == CompositionKind::DestinationIn || kind == CompositionKind::DestinationAtop;
}

/// The Porter-Duff operators that move coverage instead of mixing colours. The pixels may be
/// fully transparent; what then hides under alpha 0 is the backdrop's colour.
RGBA16 Operate(RGBA16 source, CompositionKind kind, RGBA16 backdrop);

/// Whether `kind` is one for Operate.
constexpr bool IsOperator(CompositionKind kind) {
    return kind >= CompositionKind::DestinationIn && kind <= CompositionKind::DestinationAtop;
}

}  // namespace imgbasic::host
