#pragma once

#include <vector>

namespace imgbasic {

/// A growing array that keeps its elements by value.
template <typename Element>
using KVArray = std::vector<Element>;

}  // namespace imgbasic
