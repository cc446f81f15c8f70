#pragma once

#include <memory>

#include "plugin/imgbasic/filter_row.h"

namespace imgbasic {

/// Finds a filter's row in kFilterRows by its exact name, ASCII letters in either case. Null for
/// null and for names of any other length; at most one byte more than the longest name is read.
const FilterRow* FindFilter(const char* name);

/// A new object of the filter of one of kFilterRows, with its creation defaults. Throws
/// std::bad_alloc.
std::unique_ptr<ImageProcess> CreateFilter(const FilterRow& row);

}  // namespace imgbasic
