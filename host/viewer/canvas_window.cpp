#include "host/viewer/canvas_window.h"

#include <windowsx.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace imgbasic::viewer {
namespace {

constexpr double kSmallestZoom = 1.0 / 64;
constexpr double kLargestZoom = 64;
constexpr double kZoomStep = 1.25;
constexpr int kCheckerCell = 8;
constexpr int kKeyStep = 48;

bool IsDown(int key) {
    return GetKeyState(key) < 0;
}

}  // namespace

CanvasWindow::CanvasWindow(HWND parent, std::function<void()> zoomChanged)
    : zoomChanged_(std::move(zoomChanged)) {
    Create({.className = L"imgbasic canvas",
            .style = WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPSIBLINGS,
            .parent = parent});
}

void CanvasWindow::Show(FlatPicture picture) {
    const bool sameSize = picture.width == picture_.width && picture.height == picture_.height;
    picture_ = std::move(picture);
    if (sameSize) {
        InvalidateRect(Handle(), nullptr, FALSE);
    } else {
        Fit();
    }
}

void CanvasWindow::Fit() {
    const SIZE client = ClientSize();
    const double across = static_cast<double>(client.cx) / std::max(picture_.width, 1);
    const double down = static_cast<double>(client.cy) / std::max(picture_.height, 1);
    Center(std::clamp(std::min(across, down), kSmallestZoom, 1.0));
    fits_ = true;
}

void CanvasWindow::ShowActualSize() {
    Center(1);
}

void CanvasWindow::StepZoom(bool in) {
    const SIZE client = ClientSize();
    ZoomAround(in ? place_.zoom * kZoomStep : place_.zoom / kZoomStep,
               {client.cx / 2, client.cy / 2});
}

void CanvasWindow::Center(double zoom) {
    const SIZE client = ClientSize();
    Place({zoom, std::floor((client.cx - picture_.width * zoom) / 2),
           std::floor((client.cy - picture_.height * zoom) / 2)});
}

/// The point of the picture that is at `fixed` stays there.
void CanvasWindow::ZoomAround(double zoom, POINT fixed) {
    zoom = std::clamp(zoom, kSmallestZoom, kLargestZoom);
    // Steps in and out meet at the actual size again.
    zoom = std::abs(zoom - 1) < 0.01 ? 1 : zoom;
    const double factor = zoom / place_.zoom;
    Place({zoom, std::floor(fixed.x - (fixed.x - place_.left) * factor),
           std::floor(fixed.y - (fixed.y - place_.top) * factor)});
}

void CanvasWindow::MoveBy(int x, int y) {
    Place({place_.zoom, place_.left + x, place_.top + y});
}

/// Some of the picture stays to be seen.
void CanvasWindow::Place(PicturePlace place) {
    const SIZE client = ClientSize();
    const auto keep = [this](double origin, double length, LONG room) {
        const double edge = Scaled(kKeyStep);
        return std::clamp(origin, std::min(edge - length, 0.0), std::max(room - edge, 0.0));
    };
    fits_ = false;
    place_.zoom = place.zoom;
    place_.left = keep(place.left, picture_.width * place.zoom, client.cx);
    place_.top = keep(place.top, picture_.height * place.zoom, client.cy);
    InvalidateRect(Handle(), nullptr, FALSE);
    zoomChanged_();
}

LRESULT CanvasWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    const POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    switch (message) {
        case WM_PAINT:
            Paint();
            return 0;
        case WM_ERASEBKGND:
            return 1;  // painting leaves nothing out
        case WM_SIZE:
            fits_ ? Fit() : MoveBy(0, 0);
            return 0;
        case WM_MOUSEWHEEL:
            OnWheel(wParam, lParam);
            return 0;
        case WM_LBUTTONDOWN:
        case WM_MBUTTONDOWN:
            SetFocus(Handle());
            if (message == WM_MBUTTONDOWN || IsDown(VK_SPACE)) {
                dragged_ = point;
                SetCapture(Handle());
            }
            return 0;
        case WM_MOUSEMOVE:
            OnMouseMove(point);
            return 0;
        case WM_LBUTTONUP:
        case WM_MBUTTONUP:
            ReleaseCapture();
            return 0;
        case WM_GETDLGCODE:
            return DLGC_WANTARROWS;
        case WM_KEYDOWN:
            if (OnKey(wParam)) {
                return 0;
            }
            break;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            InvalidateRect(Handle(), nullptr, FALSE);
            return 0;
        default:
            break;
    }
    return Window::OnMessage(message, wParam, lParam);
}

void CanvasWindow::OnWheel(WPARAM wParam, LPARAM lParam) {
    POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    ScreenToClient(Handle(), &point);
    const double steps = static_cast<double>(GET_WHEEL_DELTA_WPARAM(wParam)) / WHEEL_DELTA;
    ZoomAround(place_.zoom * std::pow(kZoomStep, steps), point);
}

bool CanvasWindow::OnKey(WPARAM key) {
    const int across = (key == VK_LEFT ? 1 : 0) - (key == VK_RIGHT ? 1 : 0);
    const int down = (key == VK_UP ? 1 : 0) - (key == VK_DOWN ? 1 : 0);
    if (across == 0 && down == 0) {
        return false;
    }
    MoveBy(across * Scaled(kKeyStep), down * Scaled(kKeyStep));
    return true;
}

void CanvasWindow::OnMouseMove(POINT point) {
    if (IsDown(VK_SPACE)) {
        SetCursor(LoadCursorW(nullptr, IDC_SIZEALL));
    }
    if (GetCapture() == Handle()) {
        MoveBy(point.x - dragged_.x, point.y - dragged_.y);
        dragged_ = point;
    }
}

void CanvasWindow::Paint() {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(Handle(), &paint);
    const RECT& dirty = paint.rcPaint;
    const PixelRect area{dirty.left, dirty.top, dirty.right, dirty.bottom};
    if (!area.IsEmpty()) {
        const auto width = static_cast<int>(area.Width());
        const auto height = static_cast<int>(area.Height());
        std::vector<uint32_t> pixels(PixelCount(width, height));
        RenderPicture(picture_, place_, area, Scaled(kCheckerCell),
                      Swapped(GetSysColor(COLOR_APPWORKSPACE)), pixels);
        BITMAPINFO info{};
        info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        SetDIBitsToDevice(dc, dirty.left, dirty.top, static_cast<DWORD>(width),
                          static_cast<DWORD>(height), 0, 0, 0, static_cast<UINT>(height),
                          pixels.data(), &info, DIB_RGB_COLORS);
        if (GetFocus() == Handle()) {
            const RECT client{0, 0, ClientSize().cx, ClientSize().cy};
            DrawFocusRect(dc, &client);
        }
    }
    EndPaint(Handle(), &paint);
}

}  // namespace imgbasic::viewer
