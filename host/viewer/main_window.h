#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/viewer/canvas_window.h"
#include "host/viewer/edited_picture.h"
#include "host/viewer/filter_runs.h"
#include "host/viewer/layer_panel.h"
#include "host/viewer/window.h"

namespace imgbasic::viewer {

/// The program's window: one picture, and the commands over it.
class MainWindow : public Window {
  public:
    /// Borrows the module.
    explicit MainWindow(const host::Module& module);
    ~MainWindow() override;

    /// Opens the files in place of what was open, unless the user wants to keep that.
    void Open(const std::vector<std::filesystem::path>& paths);
    /// Saves the picture; false when that failed, which the user has been told, or when the user
    /// would rather keep what it would lose.
    bool SaveTo(const std::filesystem::path& path);

    const EditedPicture& Picture() const { return picture_; }
    CanvasWindow& Canvas() { return *canvas_; }
    LayerPanel& Panel() { return *panel_; }
    FilterRuns& Runs() { return runs_; }

    /// Works off messages until the window is closed.
    void Run();

  protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    std::map<int, std::function<void()>> MakeActions();
    bool IsBusy() const { return IsWindowEnabled(Handle()) == FALSE; }
    bool CanDo(int command) const;
    void OnCommand(int command);
    bool Save();
    bool SaveAs();
    bool NeedsLayers() const;
    bool MayLeave();
    void RunFilter(const std::string& filter);
    void Finish(const host::RunOutcome& outcome);
    void AskForBatch(const std::string& filter);
    void Choose(uint32_t& color);
    void Show(const host::Document& document);
    void ShowAll();
    void ShowTitle();
    void Layout();
    std::wstring FileName() const;

    const host::Module& module_;
    EditedPicture picture_;
    FilterRuns runs_;
    const std::map<int, std::function<void()>> actions_;  ///< of the commands without a filter
    HACCEL accelerators_;
    std::unique_ptr<CanvasWindow> canvas_;
    std::unique_ptr<LayerPanel> panel_;
};

}  // namespace imgbasic::viewer
