#pragma once

#include <libgimp/gimp.h>

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "plugin/imgbasic/filter_row.h"

namespace imgbasic::host {

// The filters as procedures of GIMP: run mode, image, drawable, then the filter's options in the
// order of its row, and the layer that came of it as the result.

/// Tells GIMP about the filter and its place in the menus.
void InstallProcedure(const FilterRow& filter);

/// The filter of a procedure's name; null for another procedure.
const FilterRow* FindProcedure(std::string_view name);

/// What the options are at first: as in the module, but that a filter works on the current layer,
/// as GIMP's own do, and that a photograph keeps its border.
std::vector<int32_t> InitialValues(const FilterRow& filter, gint32 image);

/// The values that a script gave. Throws std::invalid_argument with a sentence for one out of
/// range.
std::vector<int32_t> ValuesFrom(const FilterRow& filter, std::span<const GimpParam> params);

// The values of the last interactive run, which GIMP keeps until it ends.
std::optional<std::vector<int32_t>> LastValues(const FilterRow& filter);
void KeepValues(const FilterRow& filter, const std::vector<int32_t>& values);

}  // namespace imgbasic::host
