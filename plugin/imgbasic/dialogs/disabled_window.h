#pragma once

#include "lib/base/platform.h"

namespace imgbasic {

/// Keeps a window, or the top-level one that it is in, from taking input. One that took none
/// before, or that is no window, stays as it is, and one that is gone by the end is left alone.
class DisabledWindow {
  public:
    explicit DisabledWindow(HWND window) {
        const HWND root = GetAncestor(window, GA_ROOT);
        if (IsWindow(root) && IsWindowEnabled(root)) {
            window_ = root;
            EnableWindow(root, FALSE);
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
