#include "host/viewer/layer_panel.h"

#include <cmath>
#include <string>
#include <utility>

#include "host/viewer/texts.h"

namespace imgbasic::viewer {
namespace {

constexpr int kListId = 1;
constexpr int kSliderId = 2;
constexpr int kFirstColorId = 3;
constexpr int kMargin = 6;
constexpr int kLineHeight = 20;
constexpr int kSliderHeight = 30;
constexpr int kButtonHeight = 28;
constexpr int kOpacityColumnWidth = 64;

std::wstring PercentText(double percent) {
    return std::to_wstring(std::lround(percent)) + L" %";
}

/// The list counts its state images from 1, unchecked, on.
bool IsChecked(UINT state) {
    return (state & LVIS_STATEIMAGEMASK) == INDEXTOSTATEIMAGEMASK(2);
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
        kListId);
    ListView_SetExtendedListViewStyle(list_, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
    int index = 0;
    for (const TextId title : {TextId::LayerColumn, TextId::OpacityColumn}) {
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
        column.fmt = title == TextId::OpacityColumn ? LVCFMT_RIGHT : LVCFMT_LEFT;
        column.cx = Scaled(kOpacityColumnWidth);
        column.pszText = const_cast<wchar_t*>(TextOf(title));
        ListView_InsertColumn(list_, index++, &column);
    }
    label_ = AddControl(Handle(), WC_STATICW, TextOf(TextId::Opacity), 0, -1);
    slider_ =
        AddControl(Handle(), TRACKBAR_CLASSW, L"", WS_TABSTOP | TBS_HORZ | TBS_NOTICKS, kSliderId);
    SendMessageW(slider_, TBM_SETRANGE, TRUE, MAKELPARAM(0, 100));
    for (size_t i = 0; i < colorButtons_.size(); ++i) {
        colorButtons_[i] =
            AddControl(Handle(), WC_BUTTONW, TextOf(i == 0 ? TextId::DrawColor : TextId::BackColor),
                       WS_TABSTOP | BS_OWNERDRAW, kFirstColorId + static_cast<int>(i));
    }
    TakeFont();
}

LayerPanel::~LayerPanel() {
    DeleteObject(font_);
}

void LayerPanel::Show(std::vector<LayerRow> rows, host::LayerPosition current) {
    filling_ = true;
    ListView_DeleteAllItems(list_);
    rows_ = std::move(rows);
    selected_ = 0;
    for (size_t i = 0; i < rows_.size(); ++i) {
        LVITEMW item{};
        item.iItem = static_cast<int>(i);
        ListView_InsertItem(list_, &item);
        ShowRow(i);
        const host::LayerPosition& position = rows_[i].position;
        if (position.item == current.item && position.layer == current.layer &&
            (current.layer >= 0 || rows_[i].depth == 0)) {
            selected_ = i;
        }
    }
    const UINT selected = LVIS_SELECTED | LVIS_FOCUSED;
    ListView_SetItemState(list_, static_cast<int>(selected_), selected, selected);
    filling_ = false;
    ShowOpacity();
}

void LayerPanel::ShowRow(size_t index) {
    const LayerRow& row = rows_[index];
    const auto at = static_cast<int>(index);
    std::wstring name(static_cast<size_t>(4 * row.depth), L' ');
    name += (row.isFolder ? L"▾ " : L"") + Wide(row.member->name);
    std::wstring percent = PercentText(row.member->opacity);
    ListView_SetItemText(list_, at, 0, name.data());
    ListView_SetItemText(list_, at, 1, percent.data());
    ListView_SetCheckState(list_, at, row.member->visible);
}

void LayerPanel::ShowColors(uint32_t draw, uint32_t back) {
    const auto swapped = [](uint32_t color) {
        return RGB(color >> 16 & 0xFF, color >> 8 & 0xFF, color & 0xFF);
    };
    colors_ = {swapped(draw), swapped(back)};
    for (const HWND button : colorButtons_) {
        InvalidateRect(button, nullptr, FALSE);
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
            if (LOWORD(wParam) >= kFirstColorId && HIWORD(wParam) == BN_CLICKED) {
                events_.colorWanted(LOWORD(wParam) - size_t{kFirstColorId});
            }
            return 0;
        case WM_DRAWITEM:
            DrawColor(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
            return TRUE;
        default:
            return Window::OnMessage(message, wParam, lParam);
    }
}

void LayerPanel::OnItemChanged(const NMLISTVIEW& change) {
    const auto index = static_cast<size_t>(change.iItem);
    if (filling_ || change.iItem < 0 || index >= rows_.size()) {
        return;
    }
    const LayerRow& row = rows_[index];
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
    for (const HWND control : {list_, label_, slider_, colorButtons_[0], colorButtons_[1]}) {
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font_), TRUE);
    }
}

void LayerPanel::Layout() {
    const SIZE client = ClientSize();
    const int margin = Scaled(kMargin);
    const int width = client.cx - 2 * margin;
    int bottom = client.cy;
    const auto place = [&](HWND control, int height) {
        bottom -= Scaled(height) + margin;
        MoveWindow(control, margin, bottom, width, Scaled(height), TRUE);
    };
    place(colorButtons_[1], kButtonHeight);
    place(colorButtons_[0], kButtonHeight);
    place(slider_, kSliderHeight);
    place(label_, kLineHeight);
    MoveWindow(list_, margin, margin, width, bottom - 2 * margin, TRUE);
    const int opacityWidth = Scaled(kOpacityColumnWidth);
    ListView_SetColumnWidth(list_, 1, opacityWidth);
    ListView_SetColumnWidth(
        list_, 0,
        width - opacityWidth - GetSystemMetricsForDpi(SM_CXVSCROLL, GetDpiForWindow(Handle())));
}

/// A button that shows a colour beside its text.
void LayerPanel::DrawColor(const DRAWITEMSTRUCT& item) const {
    wchar_t text[64];
    GetWindowTextW(item.hwndItem, text, static_cast<int>(std::size(text)));
    const size_t which = item.CtlID - size_t{kFirstColorId};
    RECT area = item.rcItem;
    const bool isPressed = (item.itemState & ODS_SELECTED) != 0;
    DrawFrameControl(item.hDC, &area, DFC_BUTTON, DFCS_BUTTONPUSH | (isPressed ? DFCS_PUSHED : 0U));
    InflateRect(&area, -Scaled(kMargin), -Scaled(kMargin));
    RECT swatch = area;
    swatch.right = swatch.left + 2 * (swatch.bottom - swatch.top);
    SetDCBrushColor(item.hDC, colors_[which]);
    FillRect(item.hDC, &swatch, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    FrameRect(item.hDC, &swatch, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    area.left = swatch.right + Scaled(kMargin);
    SetBkMode(item.hDC, TRANSPARENT);
    const UINT hide = (item.itemState & ODS_NOACCEL) != 0 ? DT_HIDEPREFIX : 0U;
    DrawTextW(item.hDC, text, -1, &area, DT_SINGLELINE | DT_VCENTER | hide);
    if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0) {
        DrawFocusRect(item.hDC, &area);
    }
}

}  // namespace imgbasic::viewer
