#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/cli/filter_command.h"
#include "host/document.h"
#include "host/driver.h"

namespace imgbasic::host {

/// A fault of one file; the message goes behind the file's name.
class JobError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// What messages call one of several steps, such as "step 2 (mono): "; nothing where there is one.
std::string StepName(const std::vector<FilterCommand>& steps, size_t index);

/// Whether the size is to be that of the percentages among the options.
bool HasStoredRatio(std::span<const OptionValue> options);

/// The command with the options that follow from its flags for the layer and the size.
FilterCommand WithFlagOptions(FilterCommand command);

/// The same, on top of what is stored where the run starts from that. Throws UsageError when an
/// option is missing.
FilterCommand Completed(FilterCommand command);

/// The size that the document gets. Throws JobError where it becomes too large.
PixelSize SizeAfter(const FilterCommand& command, const Document& document);

/// What to ask the driver for; `command` is complete, `reference` a batch's object or null.
/// Throws JobError where the document has no such layer or becomes too large.
RunRequest RequestFor(const FilterCommand& command, const Document& document,
                      ImageProcess* reference);

}  // namespace imgbasic::host
