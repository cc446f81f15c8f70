#pragma once

#include <array>
#include <memory>
#include <optional>

#include "plugin/imgbasic/process.h"
#include "plugin/imgbasic/texts.h"

namespace imgbasic {

/// The filters, numbered as their rows in the table.
enum class Filter { Gray, Mono, Nega, ChanDecomp, ChanMerge, ColReduce, Scaling };

struct FilterRow {
    const char* name;  ///< ASCII, what the host asks for
    const Text& displayName;
    /// A new object with its creation defaults; throws std::bad_alloc.
    std::unique_ptr<ImageProcess> (*create)();
};

/// In the order of Filter.
extern const std::array<FilterRow, 7> kFilterTable;

/// Finds a filter by its exact name, ASCII letters in either case. Null and names of any other
/// length find nothing; at most one byte more than the longest name is read.
std::optional<Filter> FindFilter(const char* name);

inline const FilterRow& RowOf(Filter filter) {
    return kFilterTable[static_cast<size_t>(filter)];
}

}  // namespace imgbasic
