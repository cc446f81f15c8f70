#include "host/layer_name.h"

#include <algorithm>

#include "host/text_encoding.h"
#include "lib/base/shift_jis.h"

namespace imgbasic::host {
namespace {

constexpr size_t kTagLength = 3;

/// The module makes room for a tag by cutting a long name, but never to less than this.
constexpr size_t kShortestCut = 56;

std::string_view NameIn(const LayerNameBytes& bytes) {
    const auto end = std::find(bytes.begin(), bytes.end(), '\0');
    return {bytes.data(), static_cast<size_t>(end - bytes.begin())};
}

bool StartsWithTag(std::string_view name) {
    return name.size() >= kTagLength && name[0] == '[' && name[1] > ' ' && name[1] < '\x7F' &&
           name[2] == ']';
}

bool IsWholeOrCut(std::string_view part, std::string_view whole) {
    return part == whole || (part.size() >= kShortestCut && whole.starts_with(part));
}

/// The longest beginning of at most `most` bytes that cuts no double-byte character in two.
std::string_view CutShiftJis(std::string_view shiftJis, size_t most) {
    size_t length = 0;
    while (length < shiftJis.size()) {
        const size_t next = length + (IsLeadByte(shiftJis[length]) ? 2 : 1);
        if (next > most || next > shiftJis.size()) {
            break;
        }
        length = next;
    }
    return shiftJis.substr(0, length);
}

}  // namespace

LayerNameBytes NameForModule(std::string_view name) {
    const std::string shiftJis = Utf8ToShiftJis(name);
    LayerNameBytes bytes{};
    std::ranges::copy(CutShiftJis(shiftJis, bytes.size() - 1), bytes.begin());
    return bytes;
}

std::string NameFromModule(const std::string& name, const LayerNameBytes& before,
                           const LayerNameBytes& after) {
    const std::string_view given = NameIn(before);
    const std::string_view answered = NameIn(after);
    if (answered == given) {
        return name;
    }
    if (StartsWithTag(answered) && IsWholeOrCut(answered.substr(kTagLength), given)) {
        return std::string(answered.substr(0, kTagLength)) + name;
    }
    // An ASCII tag has the same bytes in both encodings.
    if (StartsWithTag(given) && answered == given.substr(kTagLength)) {
        return name.substr(kTagLength);
    }
    return ShiftJisToUtf8(answered);
}

}  // namespace imgbasic::host
