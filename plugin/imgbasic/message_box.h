#pragma once

#include <functional>

#include "lib/base/platform.h"
#include "plugin/imgbasic/texts.h"

namespace imgbasic {

/// Tells the user of an error: in a modal message box with an OK button, owned by `owner`, on
/// Windows; as one line on standard error, in UTF-8, where there is no window system.
/// `argument` takes the place of the first "%s" in `text`.
void ShowError(HWND owner, const Text& text, const Text& argument = {"", ""});

/// While it lives, errors go to `sink` and nothing is shown. Captures do not nest.
class ErrorCapture {
  public:
    /// `sink` receives the text with its argument in place.
    explicit ErrorCapture(std::function<void(HWND owner, const Text& text)> sink);
    ~ErrorCapture();
    ErrorCapture(const ErrorCapture&) = delete;
    ErrorCapture& operator=(const ErrorCapture&) = delete;
};

}  // namespace imgbasic
