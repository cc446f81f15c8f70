#include "host/viewer/main_window.h"

#include <cmath>
#include <cstdio>
#include <utility>

#include "host/flatten.h"
#include "host/image_file.h"
#include "host/viewer/batch_window.h"
#include "host/viewer/file_dialogs.h"
#include "host/viewer/menu.h"
#include "host/viewer/messages.h"
#include "host/viewer/texts.h"

namespace imgbasic::viewer {
namespace {

constexpr SIZE kSize{960, 680};
constexpr int kPanelWidth = 260;

}  // namespace

MainWindow::MainWindow(const host::Module& module)
    : module_(module), runs_(module), accelerators_(MakeAccelerators()) {
    Create({.className = L"imgbasic viewer",
            .title = TextOf(TextId::AppName),
            .style = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
            .exStyle = WS_EX_ACCEPTFILES,
            .menu = MakeMenu(module)});
    canvas_ = std::make_unique<CanvasWindow>(Handle(), [this] { ShowTitle(); });
    panel_ = std::make_unique<LayerPanel>(
        Handle(), LayerPanel::Events{
                      .selected = [this](const LayerRow& row) { picture_.current = row.position; },
                      .changed =
                          [this](const LayerRow&) {
                              picture_.Touch();
                              Show(picture_.Content());
                          },
                      .colorWanted = [this](size_t which) { ChooseColor(which); }});
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
            EnableCommands(GetMenu(Handle()), {.isOpen = !picture_.IsEmpty(),
                                               .canUndo = picture_.CanUndo(),
                                               .canRedo = picture_.CanRedo(),
                                               .canRepeat = !runs_.LastFilter().empty()});
            return 0;
        case WM_COMMAND:
            OnCommand(LOWORD(wParam));
            return 0;
        case WM_DROPFILES:
            if (const auto files = DroppedFiles(reinterpret_cast<HDROP>(wParam)); !isRunning_) {
                Open(files);
            }
            return 0;
        case WM_QUERYENDSESSION:
            return !isRunning_ && MayLeave() ? TRUE : FALSE;
        case WM_CLOSE:
            if (!isRunning_ && MayLeave()) {
                DestroyWindow(Handle());
            }
            return 0;
        default:
            return Window::OnMessage(message, wParam, lParam);
    }
}

void MainWindow::OnCommand(int command) {
    if (isRunning_) {
        return;
    }
    if (command >= kFirstBatch) {
        AskForBatch(FilterAt(command - kFirstBatch));
        return;
    }
    const bool isEmpty = picture_.IsEmpty();
    if (command >= kFirstFilter) {
        if (!isEmpty) {
            RunFilter(FilterAt(command - kFirstFilter));
        }
        return;
    }
    switch (command) {
        case kOpen:
            Open(AskForPictures(Handle()));
            break;
        case kSave:
            Save();
            break;
        case kSaveAs:
            SaveAs();
            break;
        case kQuit:
            SendMessageW(Handle(), WM_CLOSE, 0, 0);
            break;
        case kUndo:
            picture_.Undo();
            ShowAll();
            break;
        case kRedo:
            picture_.Redo();
            ShowAll();
            break;
        case kDrawColor:
        case kBackColor:
            ChooseColor(command == kDrawColor ? 0 : 1);
            break;
        case kZoomIn:
        case kZoomOut:
            canvas_->StepZoom(command == kZoomIn);
            break;
        case kFit:
            canvas_->Fit();
            break;
        case kActualSize:
            canvas_->ShowActualSize();
            break;
        case kRepeat:
            if (!isEmpty && !runs_.LastFilter().empty()) {
                Finish(runs_.Repeat(picture_, Handle()));
            }
            break;
        case kAbout:
            MessageBoxW(Handle(), TextOf(TextId::AboutText), TextOf(TextId::AppName), MB_OK);
            break;
        default:
            break;
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
    } catch (const host::FileError& fault) {
        Say(Handle(), TextId::CannotOpen, fault.what(), MB_ICONERROR);
        return;
    }
    ShowAll();
    SayNotes(Handle(), notes);
}

bool MainWindow::Save() {
    const auto extension = picture_.Path().extension();
    return extension == ".png" || extension == ".ora" ? SaveTo(picture_.Path()) : SaveAs();
}

bool MainWindow::SaveAs() {
    if (picture_.IsEmpty()) {
        return true;
    }
    const std::filesystem::path path = AskWhereToSave(Handle(), FileName());
    return !path.empty() && SaveTo(path);
}

bool MainWindow::SaveTo(const std::filesystem::path& path) {
    try {
        SayNotes(Handle(), picture_.Save(path));
    } catch (const host::FileError& fault) {
        Say(Handle(), TextId::CannotSave, fault.what(), MB_ICONERROR);
        return false;
    }
    ShowTitle();
    return true;
}

/// Whether the picture may go: it is saved, or the user gives the changes up.
bool MainWindow::MayLeave() {
    if (!picture_.HasChanged()) {
        return true;
    }
    const int answer = AskToSave(Handle(), FileName());
    return answer == IDNO || (answer == IDYES && Save());
}

void MainWindow::RunFilter(const std::string& filter) {
    isRunning_ = true;
    const host::RunOutcome outcome =
        runs_.Run(filter, picture_, Handle(), [this](const host::Document& document) {
            Show(document);
            UpdateWindow(canvas_->Handle());
        });
    isRunning_ = false;
    Finish(outcome);
}

void MainWindow::Finish(const host::RunOutcome& outcome) {
    ShowAll();
    if (outcome.status == host::RunStatus::Failed) {
        Say(Handle(), TextId::CannotRun, outcome.fault, MB_ICONWARNING);
    }
}

void MainWindow::AskForBatch(const std::string& filter) {
    const std::vector<std::filesystem::path> inputs = AskForPictures(Handle());
    if (inputs.empty()) {
        return;
    }
    const std::filesystem::path folder = AskForFolder(Handle());
    if (!folder.empty()) {
        RunBatchOver(filter, inputs, folder);
    }
}

void MainWindow::RunBatchOver(const std::string& filter,
                              const std::vector<std::filesystem::path>& inputs,
                              const std::filesystem::path& folder) {
    isRunning_ = true;
    ShowBatch(module_, Handle(), {filter, inputs, folder, runs_.drawColor, runs_.backColor});
    isRunning_ = false;
}

void MainWindow::ChooseColor(size_t which) {
    uint32_t& color = which == 0 ? runs_.drawColor : runs_.backColor;
    color = AskForColor(Handle(), color);
    panel_->ShowColors(runs_.drawColor, runs_.backColor);
}

void MainWindow::Show(const host::Document& document) {
    canvas_->Show({document.width, document.height, host::Flatten(document)});
    ShowTitle();
}

void MainWindow::ShowAll() {
    Show(picture_.Content());
    panel_->Show(picture_.Rows(), picture_.current);
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
    SetWindowTextW(Handle(), (title + TextOf(TextId::AppName)).c_str());
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
    return picture_.Path().empty() ? TextOf(TextId::Untitled)
                                   : picture_.Path().filename().wstring();
}

}  // namespace imgbasic::viewer
