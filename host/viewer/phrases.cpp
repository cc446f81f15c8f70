#include "host/viewer/phrases.h"

#include <windows.h>

namespace imgbasic::viewer {

const wchar_t* Phrase::Get() const {
    static const bool isJapanese = PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_JAPANESE;
    return isJapanese ? japanese : english;
}

}  // namespace imgbasic::viewer
