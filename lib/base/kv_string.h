#pragma once

#include <string>

namespace imgbasic {

/// A byte string; what reaches the host in one is Shift-JIS.
using KVString = std::string;

}  // namespace imgbasic
