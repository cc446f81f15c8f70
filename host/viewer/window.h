#pragma once

#include <windows.h>

namespace imgbasic::viewer {

/// What a window is created from.
struct WindowForm {
    const wchar_t* className;
    const wchar_t* title = L"";
    DWORD style = 0;
    DWORD exStyle = 0;
    HWND parent = nullptr;
    HMENU menu = nullptr;
    SIZE size{CW_USEDEFAULT, CW_USEDEFAULT};
};

/// A window that goes with its object.
class Window {
  public:
    virtual ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    HWND Handle() const { return handle_; }

    /// A length given for 96 dots an inch, at the window's own scale.
    int Scaled(int length) const;

  protected:
    Window() = default;

    /// Throws std::runtime_error when the system refuses.
    void Create(const WindowForm& form);
    virtual LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);

    SIZE ClientSize() const;

  private:
    static LRESULT CALLBACK Procedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam);

    HWND handle_ = nullptr;
};

/// Throws std::runtime_error for none, which is what the system's functions give when they fail.
void RequireWindow(HWND created);

/// The system's number for a colour 0x00RRGGBB, and the other way round.
constexpr COLORREF Swapped(COLORREF color) {
    return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
}

/// The system's font for windows at the scale of `window`; the caller deletes it.
HFONT MessageFont(HWND window);

/// Adds a control with an identifier; owned by its parent.
HWND AddControl(HWND parent, const wchar_t* className, const wchar_t* text, DWORD style, int id);

}  // namespace imgbasic::viewer
