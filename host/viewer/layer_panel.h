#pragma once

#include <windows.h>

#include <commctrl.h>

#include <array>
#include <functional>
#include <vector>

#include "host/layer_rows.h"
#include "host/viewer/menu.h"
#include "host/viewer/phrases.h"
#include "host/viewer/window.h"

namespace imgbasic::viewer {

/// The list of layers with what can be changed about them, and the two colours, whose buttons are
/// commands to the parent.
class LayerPanel : public Window {
  public:
    struct Events {
        std::function<void(const host::LayerRow& row)> selected;
        std::function<void(const host::LayerRow& row)> changed;  ///< its visibility or its opacity
    };

    LayerPanel(HWND parent, Events events);
    ~LayerPanel() override;

    /// Lists the rows, which stay the document's; `current` is selected.
    void Show(std::vector<host::LayerRow> rows, host::LayerPosition current);
    /// Both colours, 0x00RRGGBB.
    void ShowColors(uint32_t draw, uint32_t back);

    HWND List() const { return list_; }
    HWND OpacitySlider() const { return slider_; }

  protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    /// A colour, beside the button that changes it.
    struct ColorRow {
        Phrase name;
        int command;
        COLORREF color = 0;
        HWND swatch = nullptr;
        HWND button = nullptr;
    };

    void Layout();
    void TakeFont();
    void ShowRow(size_t index);
    void OnItemChanged(const NMLISTVIEW& change);
    void OnSlider();
    void ShowOpacity();

    Events events_;
    std::vector<host::LayerRow> rows_;
    size_t selected_ = 0;
    bool filling_ = false;  ///< the list is being filled, not worked by the user
    HFONT font_ = nullptr;
    HWND list_ = nullptr;
    HWND label_ = nullptr;
    HWND slider_ = nullptr;
    std::array<ColorRow, 2> colors_{
        {{phrases::kDrawColor, kDrawColor}, {phrases::kBackColor, kBackColor}}};
};

}  // namespace imgbasic::viewer
