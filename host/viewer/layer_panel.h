#pragma once

#include <windows.h>

#include <commctrl.h>

#include <array>
#include <functional>
#include <vector>

#include "host/viewer/edited_picture.h"
#include "host/viewer/window.h"

namespace imgbasic::viewer {

/// The list of layers with what can be changed about them, and the two colours.
class LayerPanel : public Window {
  public:
    struct Events {
        std::function<void(const LayerRow& row)> selected;
        std::function<void(const LayerRow& row)> changed;  ///< its visibility or its opacity
        std::function<void(size_t which)> colorWanted;     ///< 0 drawing, 1 background
    };

    LayerPanel(HWND parent, Events events);
    ~LayerPanel() override;

    /// Lists the rows, which stay the document's; `current` is selected.
    void Show(std::vector<LayerRow> rows, host::LayerPosition current);
    /// Both colours, 0x00RRGGBB.
    void ShowColors(uint32_t draw, uint32_t back);

    HWND List() const { return list_; }
    HWND OpacitySlider() const { return slider_; }

  protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    void Layout();
    void TakeFont();
    void ShowRow(size_t index);
    void OnItemChanged(const NMLISTVIEW& change);
    void OnSlider();
    void ShowOpacity();
    void DrawColor(const DRAWITEMSTRUCT& item) const;

    Events events_;
    std::vector<LayerRow> rows_;
    size_t selected_ = 0;
    bool filling_ = false;  ///< the list is being filled, not worked by the user
    std::array<COLORREF, 2> colors_{};
    HFONT font_ = nullptr;
    HWND list_ = nullptr;
    HWND label_ = nullptr;
    HWND slider_ = nullptr;
    std::array<HWND, 2> colorButtons_{};
};

}  // namespace imgbasic::viewer
