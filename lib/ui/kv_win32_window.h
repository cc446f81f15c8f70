#pragma once

#include <string>

#include "lib/base/platform.h"

namespace imgbasic {

class KVWin32StandardWindow;

/// What a window is created from.
struct KVWin32WindowCreateInfo {
    virtual ~KVWin32WindowCreateInfo() = default;

    std::wstring className;
    std::wstring title;
    DWORD style = 0;
    DWORD exStyle = 0;
    HWND owner = nullptr;  ///< null, and a window that is gone, mean none
    /// Keep the place of the client area for the next time, in the user's registry: under the
    /// parent's key and the number, or under the application's key without a parent.
    bool rememberPlacement = false;
    const KVWin32StandardWindow* parent = nullptr;
    int childNumber = 0;
};

/// A window with its class, both of which go with the object.
class KVWin32Window {
  public:
    KVWin32Window() = default;
    virtual ~KVWin32Window();
    KVWin32Window(const KVWin32Window&) = delete;
    KVWin32Window& operator=(const KVWin32Window&) = delete;

    /// Creates the window, hidden. On failure nothing of it is left.
    bool Create(KVWin32WindowCreateInfo* info);
    /// Null before Create and once the window is gone.
    HWND Handle() const { return handle_; }

  protected:
    /// Registers the class and creates the frame window. `info` may be null, which fails.
    virtual bool PreCreate(KVWin32WindowCreateInfo* info);
    /// What is to be done with the window just created.
    virtual bool PostCreate(KVWin32WindowCreateInfo* info);
    /// Called once, while the window still is there, whoever destroys it.
    virtual void OnBeforeDestroy() {}
    /// Called when the message procedure let an exception go.
    virtual void OnException() {}
    virtual LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);

    void Destroy();

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void BeforeDestroy();

    std::wstring className_;
    HWND handle_ = nullptr;
    bool leaving_ = false;
};

}  // namespace imgbasic
