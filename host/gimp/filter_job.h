#pragma once

#include <libgimp/gimp.h>

#include <cstdint>
#include <string_view>
#include <vector>

#include "host/document.h"
#include "host/driver.h"
#include "host/module.h"
#include "plugin/imgbasic/filter_row.h"

namespace imgbasic::host {

/// One use of a filter on an image of GIMP's.
struct FilterJob {
    const FilterRow* filter;
    gint32 image;
    gint32 drawable;
    std::vector<int32_t> values;  ///< of the filter's options, in the order of its row
};

/// The value of an option that the filter has.
int32_t& ValueOf(FilterJob& job, std::string_view option);
int32_t ValueOf(const FilterJob& job, std::string_view option);

/// GIMP's progress bar for a filter's work on `steps` layers.
class Progress {
  public:
    Progress(const FilterRow& filter, size_t steps);
    ~Progress() { gimp_progress_end(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Step();

  private:
    size_t steps_;
    size_t done_ = 0;
};

/// The document as the filter leaves it, with the job's options and GIMP's colours. `changed`
/// options take the place of the job's. Throws RunError and std::bad_alloc.
Document RunFilterOn(const Module& module, const FilterJob& job, Document document,
                     LayerPosition current, const std::vector<OptionValue>& changed = {});

}  // namespace imgbasic::host
