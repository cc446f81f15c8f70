#pragma once

#include <functional>
#include <vector>

#include "host/viewer/picture_renderer.h"
#include "host/viewer/window.h"

namespace imgbasic::viewer {

/// Shows a picture, which can be zoomed and moved.
class CanvasWindow : public Window {
  public:
    /// `zoomChanged` is called after every change of the zoom.
    CanvasWindow(HWND parent, std::function<void()> zoomChanged);

    /// Shows another picture at the same place. One of another size is fitted in.
    void Show(FlatPicture picture);
    const FlatPicture& Shown() const { return picture_; }

    double Zoom() const { return place_.zoom; }
    /// The whole picture in the middle, not enlarged.
    void Fit();
    /// One pixel a pixel, in the middle.
    void ShowActualSize();
    /// One step in or out around the middle.
    void StepZoom(bool in);

  protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    void Paint();
    void OnWheel(WPARAM wParam, LPARAM lParam);
    bool OnKey(WPARAM key);
    void OnMouseMove(POINT point);
    void ZoomAround(double zoom, POINT fixed);
    void Center(double zoom);
    void MoveBy(int x, int y);
    void Place(PicturePlace place);

    std::function<void()> zoomChanged_;
    FlatPicture picture_;
    PicturePlace place_;
    bool fits_ = true;  ///< stays fitted in when the window changes its size
    POINT dragged_{};   ///< where the pointer was last while it moves the picture
};

}  // namespace imgbasic::viewer
