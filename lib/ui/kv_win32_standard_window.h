#pragma once

#include <optional>
#include <string>

#include "lib/ui/kv_win32_window.h"

namespace imgbasic {

/// A framed window that can be run modally, and that can remember its place.
class KVWin32StandardWindow : public KVWin32Window {
  public:
    /// Shows the window and works off messages until it is closed or destroyed by others, then
    /// destroys it. Returns what it was closed with, else IDCANCEL.
    int RunModal();

    /// Ends RunModal, which will return `endCode`; only the first call counts.
    void Close(int endCode);

    /// Where the window, and below it its children, remember their places; empty if nowhere.
    const std::string& PlacementKey() const { return placementKey_; }

  protected:
    bool PreCreate(KVWin32WindowCreateInfo* info) override;
    void OnBeforeDestroy() override;
    void OnException() override { Close(IDCANCEL); }
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    /// Whether the message was one for the keyboard handling inside the window.
    virtual bool TranslateKeys(MSG& message);

    /// Gives the window a client area of this size: at its remembered place, or in the middle of
    /// its owner, but always where it can be seen.
    void PlaceClient(SIZE client);

  private:
    std::string placementKey_;
    RECT rememberedClient_{};  ///< in screen coordinates; empty when there is none
    std::optional<int> endCode_;
};

}  // namespace imgbasic
