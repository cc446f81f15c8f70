#include "host/viewer/messages.h"

#include <cstdio>

namespace imgbasic::viewer {

void Say(HWND owner, TextId headline, const std::string& detail, UINT icon) {
    const std::wstring text = TextOf(headline) + (L"\n\n" + Wide(detail));
    MessageBoxW(owner, text.c_str(), TextOf(TextId::AppName), icon);
}

void SayNotes(HWND owner, const std::vector<std::string>& notes) {
    std::string all;
    for (const std::string& note : notes) {
        all += note + "\n";
    }
    if (!all.empty()) {
        Say(owner, TextId::Remarks, all, MB_ICONINFORMATION);
    }
}

int AskToSave(HWND owner, const std::wstring& file) {
    wchar_t question[512];
    std::swprintf(question, std::size(question), TextOf(TextId::SaveChanges),
                  file.substr(0, MAX_PATH).c_str());
    return MessageBoxW(owner, question, TextOf(TextId::AppName), MB_YESNOCANCEL | MB_ICONQUESTION);
}

}  // namespace imgbasic::viewer
