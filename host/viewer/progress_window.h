#pragma once

#include <string>

#include "host/viewer/window.h"

namespace imgbasic::viewer {

/// Tells how far a long work on the same thread has come, lets the user stop it, and in the end
/// shows a report until it is closed. Its owner takes no input meanwhile.
class ProgressWindow : public Window {
  public:
    explicit ProgressWindow(HWND owner);
    ~ProgressWindow() override;

    /// Shows `text` and `done` of `total`, and handles what the user has done; false when the work
    /// is to stop.
    bool Tell(const std::wstring& text, size_t done, size_t total);

    /// Shows the report, a headline and lines, until the user closes it.
    void Report(const std::wstring& headline, const std::wstring& lines);

  protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    void Layout();
    void Dispatch(MSG& message);

    HWND owner_;
    HFONT font_ = nullptr;
    HWND text_ = nullptr;
    HWND bar_ = nullptr;
    HWND lines_ = nullptr;
    HWND button_ = nullptr;
    bool stopped_ = false;
};

}  // namespace imgbasic::viewer
