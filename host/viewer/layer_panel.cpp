#include "host/viewer/layer_panel.h"

#include <cmath>
#include <string>
#include <utility>

#include "lib/base/wide_text.h"

namespace imgbasic::viewer {
namespace {

constexpr int kMargin = 6;
constexpr int kLineHeight = 20;
constexpr int kSliderHeight = 30;
constexpr int kButtonHeight = 28;
constexpr int kSwatchWidth = 40;
constexpr int kOpacityColumnWidth = 64;

std::wstring PercentText(double percent) {
    return std::to_wstring(std::lround(percent)) + L" %";
}

/// The list counts its state images from 1, unchecked, on.
bool IsChecked(UINT state) {
    return (state & LVIS_STATEIMAGEMASK) == INDEXTOSTATEIMAGEMASK(2);
}

/// Its width comes with the layout.
void AddColumn(HWND list, int index, const Phrase& title, int alignment) {
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT | LVCF_FMT;
    column.fmt = alignment;
    column.pszText = const_cast<wchar_t*>(title.Get());
    ListView_InsertColumn(list, index, &column);
}

}  // namespace

LayerPanel::LayerPanel(HWND parent, Events events) : events_(std::move(events)) {
    Create({.className = L"imgbasic layers",
            .style = WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN,
            .exStyle = WS_EX_CONTROLPARENT,
            .parent = parent});
    list_ = AddControl(
        Handle(), WC_LISTVIEWW, L"",
        WS_TABSTOP | WS_BORDER | LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER,
        -1);
    ListView_SetExtendedListViewStyle(list_, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
    AddColumn(list_, 0, phrases::kLayerColumn, LVCFMT_LEFT);
    AddColumn(list_, 1, phrases::kOpacityColumn, LVCFMT_RIGHT);
    label_ = AddControl(Handle(), WC_STATICW, phrases::kOpacity.Get(), 0, -1);
    slider_ = AddControl(Handle(), TRACKBAR_CLASSW, L"", WS_TABSTOP | TBS_HORZ | TBS_NOTICKS, -1);
    SendMessageW(slider_, TBM_SETRANGE, TRUE, MAKELPARAM(0, 100));
    for (ColorRow& row : colors_) {
        row.swatch = AddControl(Handle(), WC_STATICW, L"", WS_BORDER, -1);
        row.button = AddControl(Handle(), WC_BUTTONW, row.name.Get(), WS_TABSTOP, row.command);
    }
    TakeFont();
}

LayerPanel::~LayerPanel() {
    DeleteObject(font_);
}

void LayerPanel::Show(std::vector<host::LayerRow> rows, host::LayerPosition current) {
    filling_ = true;
    ListView_DeleteAllItems(list_);
    rows_ = std::move(rows);
    selected_ = 0;
    for (size_t i = 0; i < rows_.size(); ++i) {
        LVITEMW item{};
        item.iItem = static_cast<int>(i);
        ListView_InsertItem(list_, &item);
        ShowRow(i);
        if (rows_[i].position == current && (current.layer >= 0 || rows_[i].depth == 0)) {
            selected_ = i;
        }
    }
    const UINT selected = LVIS_SELECTED | LVIS_FOCUSED;
    ListView_SetItemState(list_, static_cast<int>(selected_), selected, selected);
    filling_ = false;
    ShowOpacity();
}

void LayerPanel::ShowRow(size_t index) {
    const host::LayerRow& row = rows_[index];
    const auto at = static_cast<int>(index);
    std::wstring name(4 * row.depth, L' ');
    name += (row.layer == nullptr ? L"▾ " : L"") + WideFromUtf8(row.member->name);
    std::wstring percent = PercentText(row.member->opacity);
    ListView_SetItemText(list_, at, 0, name.data());
    ListView_SetItemText(list_, at, 1, percent.data());
    ListView_SetCheckState(list_, at, row.member->visible);
}

void LayerPanel::ShowColors(uint32_t draw, uint32_t back) {
    colors_[0].color = Swapped(draw);
    colors_[1].color = Swapped(back);
    for (const ColorRow& row : colors_) {
        InvalidateRect(row.swatch, nullptr, TRUE);
    }
}

LRESULT LayerPanel::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE:
            Layout();
            return 0;
        case WM_DPICHANGED_AFTERPARENT:
            TakeFont();
            Layout();
            return 0;
        case WM_NOTIFY: {
            const auto* const change = reinterpret_cast<const NMLISTVIEW*>(lParam);
            if (change->hdr.hwndFrom == list_ && change->hdr.code == LVN_ITEMCHANGED) {
                OnItemChanged(*change);
            }
            return 0;
        }
        case WM_HSCROLL:
            OnSlider();
            return 0;
        case WM_COMMAND:
            return SendMessageW(GetParent(Handle()), message, wParam, 0);
        case WM_CTLCOLORSTATIC:
            for (const ColorRow& row : colors_) {
                if (reinterpret_cast<HWND>(lParam) == row.swatch) {
                    SetDCBrushColor(reinterpret_cast<HDC>(wParam), row.color);
                    return reinterpret_cast<LRESULT>(GetStockObject(DC_BRUSH));
                }
            }
            break;
        default:
            break;
    }
    return Window::OnMessage(message, wParam, lParam);
}

void LayerPanel::OnItemChanged(const NMLISTVIEW& change) {
    const auto index = static_cast<size_t>(change.iItem);
    if (filling_ || change.iItem < 0 || index >= rows_.size()) {
        return;
    }
    const host::LayerRow& row = rows_[index];
    if ((change.uNewState & LVIS_SELECTED) != 0 && index != selected_) {
        selected_ = index;
        ShowOpacity();
        events_.selected(row);
    }
    if ((change.uNewState & LVIS_STATEIMAGEMASK) != 0 &&
        IsChecked(change.uNewState) != row.member->visible) {
        row.member->visible = !row.member->visible;
        events_.changed(row);
    }
}

void LayerPanel::OnSlider() {
    const auto percent = static_cast<double>(SendMessageW(slider_, TBM_GETPOS, 0, 0));
    if (selected_ < rows_.size() && percent != std::round(rows_[selected_].member->opacity)) {
        rows_[selected_].member->opacity = percent;
        filling_ = true;
        ShowRow(selected_);
        filling_ = false;
        events_.changed(rows_[selected_]);
    }
}

void LayerPanel::ShowOpacity() {
    const bool isThere = selected_ < rows_.size();
    EnableWindow(slider_, isThere ? TRUE : FALSE);
    SendMessageW(slider_, TBM_SETPOS, TRUE,
                 isThere ? std::lround(rows_[selected_].member->opacity) : 100);
}

void LayerPanel::TakeFont() {
    DeleteObject(std::exchange(font_, MessageFont(Handle())));
    for (const HWND control : {list_, label_, slider_, colors_[0].button, colors_[1].button}) {
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font_), TRUE);
    }
}

void LayerPanel::Layout() {
    const SIZE client = ClientSize();
    const int margin = Scaled(kMargin);
    const int width = client.cx - 2 * margin;
    const int swatchWidth = Scaled(kSwatchWidth);
    const int buttonHeight = Scaled(kButtonHeight);
    int top = client.cy;
    for (size_t i = colors_.size(); i-- > 0;) {
        top -= buttonHeight + margin;
        MoveWindow(colors_[i].swatch, margin, top, swatchWidth, buttonHeight, TRUE);
        MoveWindow(colors_[i].button, 2 * margin + swatchWidth, top, width - margin - swatchWidth,
                   buttonHeight, TRUE);
    }
    top -= Scaled(kSliderHeight) + margin;
    MoveWindow(slider_, margin, top, width, Scaled(kSliderHeight), TRUE);
    top -= Scaled(kLineHeight);
    MoveWindow(label_, margin, top, width, Scaled(kLineHeight), TRUE);
    MoveWindow(list_, margin, margin, width, top - 2 * margin, TRUE);
    const int opacityWidth = Scaled(kOpacityColumnWidth);
    ListView_SetColumnWidth(list_, 1, opacityWidth);
    ListView_SetColumnWidth(
        list_, 0,
        width - opacityWidth - GetSystemMetricsForDpi(SM_CXVSCROLL, GetDpiForWindow(Handle())));
}

}  // namespace imgbasic::viewer
