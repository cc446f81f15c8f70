#include "host/viewer/batch_window.h"

#include <cstdio>

#include "host/viewer/progress_window.h"
#include "host/viewer/texts.h"

namespace imgbasic::viewer {
namespace {

/// A text of the table with two numbers and a name in it.
std::wstring Filled(TextId id, size_t first, size_t second, const std::wstring& name) {
    std::wstring text(name.size() + 160, L'\0');
    const int length =
        std::swprintf(text.data(), text.size(), TextOf(id), first, second, name.c_str());
    text.resize(static_cast<size_t>(std::max(length, 0)));
    return text;
}

}  // namespace

void ShowBatch(const host::Module& module, HWND owner, const BatchOrder& order) {
    bool cancelled = false;
    const host::FilterObject reference = host::PrepareBatch(module, order.filter, owner, cancelled);
    if (!reference) {
        return;
    }
    ProgressWindow window(owner);
    const size_t total = order.inputs.size();
    const BatchReport report = RunBatch(module, *reference, order, [&](size_t done) {
        const std::wstring name = order.inputs[done].filename().wstring();
        return window.Tell(Filled(TextId::Progress, done + 1, total, name), done, total);
    });
    window.Tell(L"", total, total);
    std::wstring lines;
    for (const std::string& fault : report.faults) {
        lines += Wide(fault) + L"\r\n";
    }
    window.Report(Filled(report.cancelled ? TextId::BatchStopped : TextId::BatchDone,
                         report.written, total, order.folder.wstring()),
                  lines);
}

}  // namespace imgbasic::viewer
