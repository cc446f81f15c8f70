#include "host/viewer/messages.h"

#include <exception>
#include <new>

#include "lib/base/wide_text.h"

namespace imgbasic::viewer {

int ShowBox(HWND owner, const Phrase& headline, const std::wstring& detail, UINT style) {
    const std::wstring text = headline.Get() + (L"\n\n" + detail);
    return MessageBoxW(owner, text.c_str(), phrases::kAppName.Get(), style);
}

std::wstring Lines(const std::vector<std::string>& sentences) {
    std::wstring lines;
    for (const std::string& sentence : sentences) {
        lines += WideFromUtf8(sentence) + L"\r\n";
    }
    return lines;
}

void ShowNotes(HWND owner, const std::vector<std::string>& notes) {
    if (!notes.empty()) {
        ShowBox(owner, phrases::kRemarks, Lines(notes), MB_ICONINFORMATION);
    }
}

bool AskToLose(HWND owner, const Phrase& question, const std::vector<std::string>& losses) {
    return ShowBox(owner, question, Lines(losses), MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2) ==
           IDYES;
}

std::wstring FaultText() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return phrases::kNoMemory.Get();
    } catch (const std::exception& fault) {
        return WideFromUtf8(fault.what());
    }
}

}  // namespace imgbasic::viewer
