#pragma once

#include <windows.h>

#include <string>

namespace imgbasic::viewer {

/// Tells how far a long work on the same thread has come, lets the user stop it, and in the end
/// shows a report until it is closed. Its owner takes no input meanwhile.
class ProgressWindow {
  public:
    /// Throws std::runtime_error when the system refuses.
    explicit ProgressWindow(HWND owner);
    ~ProgressWindow();
    ProgressWindow(const ProgressWindow&) = delete;
    ProgressWindow& operator=(const ProgressWindow&) = delete;

    /// Shows `text` and `done` of `total`, and handles what the user has done; false when the work
    /// is to stop.
    bool Tell(const std::wstring& text, size_t done, size_t total);

    /// Shows the report, a headline and lines, until the user closes it.
    void Report(const std::wstring& headline, const std::wstring& lines);

  private:
    static INT_PTR CALLBACK Procedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam);
    void Dispatch(MSG& message);

    HWND owner_;
    HWND handle_;
    bool stopped_ = false;
};

}  // namespace imgbasic::viewer
