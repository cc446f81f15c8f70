#include "host/viewer/main_window.h"

#include <cmath>
#include <cstdio>
#include <utility>

#include "host/flatten.h"
#include "host/image_file.h"
#include "host/openraster.h"
#include "host/viewer/batch.h"
#include "host/viewer/file_dialogs.h"
#include "host/viewer/menu.h"
#include "host/viewer/messages.h"
#include "lib/base/wide_text.h"

namespace imgbasic::viewer {
namespace {

constexpr SIZE kSize{960, 680};
constexpr int kPanelWidth = 260;

std::wstring About() {
    return L"" IMGBASIC_VERSION "\n\n" + std::wstring(phrases::kAboutText.Get());
}

}  // namespace

MainWindow::MainWindow(const host::Module& module)
    : module_(module), runs_(module), actions_(MakeActions()), accelerators_(MakeAccelerators()) {
    Create({.className = L"imgbasic viewer",
            .title = phrases::kAppName.Get(),
            .style = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
            .exStyle = WS_EX_ACCEPTFILES,
            .menu = MakeMenu(module)});
    canvas_ = std::make_unique<CanvasWindow>(Handle(), [this] { ShowTitle(); });
    panel_ = std::make_unique<LayerPanel>(
        Handle(),
        LayerPanel::Events{
            .selected = [this](const host::LayerRow& row) { picture_.current = row.position; },
            .changed =
                [this](const host::LayerRow&) {
                    picture_.Touch();
                    Show(picture_.Content());
                }});
    panel_->ShowColors(runs_.drawColor, runs_.backColor);
    SetWindowPos(Handle(), nullptr, 0, 0, Scaled(kSize.cx), Scaled(kSize.cy),
                 SWP_NOMOVE | SWP_NOZORDER);
    ShowAll();
}

MainWindow::~MainWindow() {
    DestroyAcceleratorTable(accelerators_);
}

void MainWindow::Run() {
    MSG message;
    while (Handle() != nullptr && GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (TranslateAcceleratorW(Handle(), accelerators_, &message) == 0 &&
            IsDialogMessageW(Handle(), &message) == FALSE) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

LRESULT MainWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE:
            Layout();
            return 0;
        case WM_DPICHANGED: {
            const RECT& place = *reinterpret_cast<const RECT*>(lParam);
            SetWindowPos(Handle(), nullptr, place.left, place.top, place.right - place.left,
                         place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
            return 0;
        }
        case WM_SETFOCUS:
            SetFocus(canvas_ ? canvas_->Handle() : nullptr);
            return 0;
        case WM_MOUSEWHEEL:  // from whichever control has the focus
            return canvas_ ? SendMessageW(canvas_->Handle(), message, wParam, lParam) : 0;
        case WM_INITMENUPOPUP:
            if (HIWORD(lParam) == FALSE) {  // not the system's menu
                EnableCommands(reinterpret_cast<HMENU>(wParam),
                               [this](int command) { return CanDo(command); });
            }
            return 0;
        case WM_COMMAND:
            OnCommand(LOWORD(wParam));
            return 0;
        case WM_DROPFILES:
            if (const auto files = DroppedFiles(reinterpret_cast<HDROP>(wParam)); !IsBusy()) {
                Open(files);
            }
            return 0;
        case WM_QUERYENDSESSION:
            return !IsBusy() && MayLeave() ? TRUE : FALSE;
        case WM_CLOSE:
            if (!IsBusy() && MayLeave()) {
                DestroyWindow(Handle());
            }
            return 0;
        default:
            return Window::OnMessage(message, wParam, lParam);
    }
}

std::map<int, std::function<void()>> MainWindow::MakeActions() {
    const auto showAfter = [this](void (EditedPicture::*step)()) {
        (picture_.*step)();
        ShowAll();
    };
    return {
        {kOpen, [this] { Open(AskForPictures(Handle())); }},
        {kSave, [this] { Save(); }},
        {kSaveAs, [this] { SaveAs(); }},
        {kQuit, [this] { SendMessageW(Handle(), WM_CLOSE, 0, 0); }},
        {kUndo, [=] { showAfter(&EditedPicture::Undo); }},
        {kRedo, [=] { showAfter(&EditedPicture::Redo); }},
        {kDrawColor, [this] { Choose(runs_.drawColor); }},
        {kBackColor, [this] { Choose(runs_.backColor); }},
        {kZoomIn, [this] { canvas_->StepZoom(true); }},
        {kZoomOut, [this] { canvas_->StepZoom(false); }},
        {kFit, [this] { canvas_->Fit(); }},
        {kActualSize, [this] { canvas_->ShowActualSize(); }},
        {kRepeat, [this] { Finish(runs_.Repeat(picture_, Handle())); }},
        {kAbout, [this] { ShowBox(Handle(), phrases::kAppName, About(), MB_OK); }},
    };
}

bool MainWindow::CanDo(int command) const {
    const bool isOpen = !picture_.IsEmpty();
    switch (command) {
        case kSave:
        case kSaveAs:
            return isOpen;
        case kUndo:
            return picture_.CanUndo();
        case kRedo:
            return picture_.CanRedo();
        case kRepeat:
            return isOpen && !runs_.LastFilter().empty();
        default:
            return isOpen || command < kFirstFilter || command >= kFirstBatch;
    }
}

void MainWindow::OnCommand(int command) {
    if (IsBusy() || !CanDo(command)) {
        return;
    }
    if (command >= kFirstBatch) {
        AskForBatch(FilterAt(command - kFirstBatch));
    } else if (command >= kFirstFilter) {
        RunFilter(FilterAt(command - kFirstFilter));
    } else if (const auto action = actions_.find(command); action != actions_.end()) {
        action->second();
    }
}

void MainWindow::Open(const std::vector<std::filesystem::path>& paths) {
    if (paths.empty() || !MayLeave()) {
        return;
    }
    std::vector<std::string> notes;
    try {
        picture_.Open(LoadAsLayers(paths, notes),
                      paths.size() == 1 ? paths.front() : std::filesystem::path());
    } catch (const std::exception&) {
        ShowBox(Handle(), phrases::kCannotOpen, FaultText(), MB_ICONERROR);
        return;
    }
    ShowAll();
    std::ranges::move(host::LossesOf(picture_.Content(), false), std::back_inserter(notes));
    ShowNotes(Handle(), notes);
}

bool MainWindow::Save() {
    return CanBeSavedAs(picture_.Path()) ? SaveTo(picture_.Path()) : SaveAs();
}

bool MainWindow::SaveAs() {
    std::filesystem::path path = picture_.Path().parent_path() / FileName();
    path = AskWhereToSave(Handle(), path.replace_extension(NeedsLayers() ? ".ora" : ".png"));
    return !path.empty() && SaveTo(path);
}

bool MainWindow::SaveTo(const std::filesystem::path& path) {
    const host::Document& document = picture_.Content();
    try {
        if (NeedsLayers() && !host::KeepsLayers(path.extension().string()) &&
            !AskToLose(Handle(), phrases::kPngLoses, host::LossesOf(document, false))) {
            return false;
        }
        ShowNotes(Handle(), picture_.Save(path));
    } catch (const std::exception&) {
        ShowBox(Handle(), phrases::kCannotSave, FaultText(), MB_ICONERROR);
        return false;
    }
    ShowTitle();
    return true;
}

/// Whether only OpenRaster keeps all of the picture.
bool MainWindow::NeedsLayers() const {
    return picture_.Content().source || host::WholePicture(picture_.Content()) == nullptr;
}

/// Whether the picture may go: it is saved, or the user gives the changes up.
bool MainWindow::MayLeave() {
    if (!picture_.HasChanged()) {
        return true;
    }
    const int answer =
        ShowBox(Handle(), phrases::kSaveChanges, FileName(), MB_YESNOCANCEL | MB_ICONQUESTION);
    return answer == IDNO || (answer == IDYES && Save());
}

void MainWindow::RunFilter(const std::string& filter) {
    Finish(runs_.Run(filter, picture_, Handle(), [this](const host::Document& document) {
        Show(document);
        UpdateWindow(canvas_->Handle());
    }));
}

void MainWindow::Finish(const host::RunOutcome& outcome) {
    ShowAll();
    if (outcome.status == host::RunStatus::Failed) {
        ShowBox(Handle(), phrases::kCannotRun, WideFromUtf8(outcome.fault), MB_ICONWARNING);
    }
}

void MainWindow::AskForBatch(const std::string& filter) {
    const std::vector<std::filesystem::path> inputs = AskForPictures(Handle());
    if (inputs.empty()) {
        return;
    }
    const std::filesystem::path folder = AskForFolder(Handle());
    if (!folder.empty()) {
        RunBatch(module_, Handle(), {filter, inputs, folder, runs_.drawColor, runs_.backColor});
    }
}

void MainWindow::Choose(uint32_t& color) {
    color = AskForColor(Handle(), color);
    panel_->ShowColors(runs_.drawColor, runs_.backColor);
}

void MainWindow::Show(const host::Document& document) {
    canvas_->Show({document.width, document.height, host::Flatten(document)});
    ShowTitle();
}

void MainWindow::ShowAll() {
    panel_->Show(picture_.Rows(), picture_.current);  // first, as its old rows may be gone
    Show(picture_.Content());
}

void MainWindow::ShowTitle() {
    std::wstring title;
    if (!picture_.IsEmpty() && canvas_) {
        const FlatPicture& shown = canvas_->Shown();
        title = FileName() + (picture_.HasChanged() ? L"*" : L"") + L" – " +
                std::to_wstring(shown.width) + L" × " + std::to_wstring(shown.height) + L" – " +
                std::to_wstring(std::lround(canvas_->Zoom() * 100)) + L" % – ";
    }
    if (!runs_.LastFilter().empty()) {
        wchar_t time[32];
        std::swprintf(time, std::size(time), L" %.1f ms – ", runs_.LastMilliseconds());
        title += DisplayName(module_, runs_.LastFilter()) + time;
    }
    SetWindowTextW(Handle(), (title + phrases::kAppName.Get()).c_str());
}

void MainWindow::Layout() {
    if (!panel_) {
        return;
    }
    const SIZE client = ClientSize();
    const int panel = std::min<int>(Scaled(kPanelWidth), client.cx / 2);
    MoveWindow(canvas_->Handle(), 0, 0, client.cx - panel, client.cy, TRUE);
    MoveWindow(panel_->Handle(), client.cx - panel, 0, panel, client.cy, TRUE);
}

std::wstring MainWindow::FileName() const {
    return picture_.Path().empty() ? phrases::kUntitled.Get()
                                   : picture_.Path().filename().wstring();
}

}  // namespace imgbasic::viewer
