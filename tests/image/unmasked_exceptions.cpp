#ifdef __linux__
#include <cfenv>

// Hosts may have unmasked these exceptions: a kernel that raises one ends the tests right there.
// The quiet ones, of inexact and very small results, are part of ordinary arithmetic.
[[maybe_unused]] static const int kUnmasked =
    feenableexcept(FE_DIVBYZERO | FE_INVALID | FE_OVERFLOW);
#endif
