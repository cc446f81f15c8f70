#pragma once

#include <string>
#include <string_view>

#include "host/driver.h"

namespace imgbasic::host {

/// RunFilter, consuming the document. What the module says to the user when it refuses is in
/// Japanese; unless that is the user's language, by the environment, the fault tells it in English
/// instead.
RunOutcome RunFilterInUsersLanguage(const Module& module, Document&& document,
                                    const RunRequest& request);

/// What a message of the module's says, in English; empty for one that is not known. `message` is
/// UTF-8.
std::string InEnglish(std::string_view message);

}  // namespace imgbasic::host
