#pragma once

#include "lib/base/platform.h"

namespace imgbasic {

/// Keeps a window from taking input. One that took none before, or that is no window, stays as
/// it is, and one that is gone by the end is left alone.
class DisabledWindow {
  public:
    explicit DisabledWindow(HWND window) {
        if (IsWindow(window) && IsWindowEnabled(window)) {
            window_ = window;
            EnableWindow(window, FALSE);
        }
    }
    ~DisabledWindow() {
        if (IsWindow(window_)) {
            EnableWindow(window_, TRUE);
        }
    }
    DisabledWindow(const DisabledWindow&) = delete;
    DisabledWindow& operator=(const DisabledWindow&) = delete;

  private:
    HWND window_ = nullptr;
};

}  // namespace imgbasic
