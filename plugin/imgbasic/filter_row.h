#pragma once

#include <span>

#include "plugin/imgbasic/filter_option.h"
#include "plugin/imgbasic/texts.h"

namespace imgbasic {

enum class BatchUse {
    None,
    Unasked,  ///< starts at once, with the options of a new object
    Dialog    ///< shows the options dialog first
};

/// How much a stored value has to get right before it counts.
enum class Loading {
    Lenient,  ///< whatever bytes there are, then corrected
    Strict    ///< only a whole number within the bounds
};

/// What is true of a filter.
struct FilterRow {
    const char* name;  ///< ASCII, what the host asks for
    Text displayName;
    bool changesSize = false;
    BatchUse batch = BatchUse::None;
    int phases = 1;
    Loading loading = Loading::Lenient;
    bool repeatsOptions = false;  ///< takes over a reference's options, all but TargetType
    int dialog = 0;               ///< its template (resource.h); 0 for none
    bool dialogChecks = false;    ///< execute and preview do nothing while a value is out of range
    std::span<const FilterOption> options{};  ///< in the order in which they are stored and shown
};

/// The row of the filter whose objects are of this class; stands in the header of the class.
template <typename Process>
extern const FilterRow kRow;

}  // namespace imgbasic
