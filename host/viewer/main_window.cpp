#include "host/viewer/main_window.h"

#include <shellapi.h>

#include <cmath>
#include <cstdio>
#include <utility>

#include "host/flatten.h"
#include "host/image_file.h"
#include "host/viewer/batch_window.h"
#include "host/viewer/file_dialogs.h"
#include "host/viewer/menu.h"
#include "host/viewer/texts.h"

namespace imgbasic::viewer {
namespace {

constexpr SIZE kSize{960, 680};
constexpr int kPanelWidth = 260;

FlatPicture Flat(const host::Document& document) {
    return {document.width, document.height, host::Flatten(document)};
}

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
        case WM_DPICHANGED:
            OnDpiChanged(lParam);
            return 0;
        case WM_SETFOCUS:
            SetFocus(canvas_ ? canvas_->Handle() : nullptr);
            return 0;
        case WM_MOUSEWHEEL:  // from whichever control has the focus
            return canvas_ ? SendMessageW(canvas_->Handle(), message, wParam, lParam) : 0;
        case WM_INITMENUPOPUP:
            EnableCommands();
            return 0;
        case WM_COMMAND:
            OnCommand(LOWORD(wParam));
            return 0;
        case WM_DROPFILES:
            OnDrop(wParam);
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

void MainWindow::OnDrop(WPARAM drop) {
    auto* const files = reinterpret_cast<HDROP>(drop);
    std::vector<std::filesystem::path> paths;
    const UINT count = DragQueryFileW(files, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count; ++i) {
        std::wstring path(DragQueryFileW(files, i, nullptr, 0) + 1, L'\0');
        path.resize(DragQueryFileW(files, i, path.data(), static_cast<UINT>(path.size())));
        paths.emplace_back(path);
    }
    DragFinish(files);
    if (!isRunning_) {
        Open(paths);
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
        Say(TextId::CannotOpen, fault.what(), MB_ICONERROR);
        return;
    }
    ShowAll();
    SayNotes(notes);
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
        SayNotes(picture_.Save(path));
    } catch (const host::FileError& fault) {
        Say(TextId::CannotSave, fault.what(), MB_ICONERROR);
        return false;
    }
    ShowTitle();
    return true;
}

/// Whether the picture may go: it is saved, or the user gives the changes up.
bool MainWindow::MayLeave() {
    if (picture_.IsEmpty() || !picture_.HasChanged()) {
        return true;
    }
    std::wstring question(1024, L'\0');
    question.resize(static_cast<size_t>(std::swprintf(question.data(), question.size(),
                                                      TextOf(TextId::SaveChanges),
                                                      FileName().substr(0, 260).c_str())));
    const int answer = MessageBoxW(Handle(), question.c_str(), TextOf(TextId::AppName),
                                   MB_YESNOCANCEL | MB_ICONQUESTION);
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
        Say(TextId::CannotRun, outcome.fault, MB_ICONWARNING);
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
    canvas_->Show(Flat(document));
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

void MainWindow::EnableCommands() {
    const HMENU menu = GetMenu(Handle());
    const auto enable = [menu](int command, bool can) {
        EnableMenuItem(menu, static_cast<UINT>(command), can ? MF_ENABLED : MF_GRAYED);
    };
    const bool isOpen = !picture_.IsEmpty();
    for (int command = kFirstFilter; GetMenuState(menu, static_cast<UINT>(command), 0) != ~0U;
         ++command) {
        enable(command, isOpen);
    }
    enable(kSave, isOpen);
    enable(kSaveAs, isOpen);
    enable(kUndo, picture_.CanUndo());
    enable(kRedo, picture_.CanRedo());
    enable(kRepeat, isOpen && !runs_.LastFilter().empty());
}

void MainWindow::OnDpiChanged(LPARAM lParam) {
    const RECT& place = *reinterpret_cast<const RECT*>(lParam);
    SetWindowPos(Handle(), nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
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

void MainWindow::Say(TextId headline, const std::string& detail, UINT icon) const {
    const std::wstring text = TextOf(headline) + (L"\n\n" + Wide(detail));
    MessageBoxW(Handle(), text.c_str(), TextOf(TextId::AppName), icon);
}

void MainWindow::SayNotes(const std::vector<std::string>& notes) const {
    std::string all;
    for (const std::string& note : notes) {
        all += note + "\n";
    }
    if (!all.empty()) {
        Say(TextId::Remarks, all, MB_ICONINFORMATION);
    }
}

std::wstring MainWindow::FileName() const {
    return picture_.Path().empty() ? TextOf(TextId::Untitled)
                                   : picture_.Path().filename().wstring();
}

}  // namespace imgbasic::viewer
