#pragma once

#include "host/viewer/batch_run.h"
#include "host/viewer/window.h"

namespace imgbasic::viewer {

/// Lets the module ask once for the options, runs the batch with its progress shown over `owner`,
/// and shows the report until the user closes it.
void ShowBatch(const host::Module& module, HWND owner, const BatchOrder& order);

}  // namespace imgbasic::viewer
