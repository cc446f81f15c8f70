#include "host/cli/text_table.h"

#include <algorithm>
#include <iterator>

namespace imgbasic::host {
namespace {

struct CodeRange {
    char32_t first;
    char32_t last;
};

constexpr CodeRange kCombining[] = {
    {0x0300, 0x036F}, {0x200B, 0x200F}, {0x3099, 0x309A}, {0xFE00, 0xFE0F}};

/// Wide in the Unicode Standard's sense (Annex 11), by blocks.
constexpr CodeRange kWide[] = {
    {0x1100, 0x115F}, {0x2E80, 0x303E}, {0x3041, 0xA4CF}, {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},
    {0xFE30, 0xFE6F}, {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}, {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD}};

bool IsIn(const auto& ranges, char32_t code) {
    return std::any_of(std::begin(ranges), std::end(ranges), [code](const CodeRange& range) {
        return code >= range.first && code <= range.last;
    });
}

/// Takes one character from the front of `text`, which is not empty.
char32_t TakeCharacter(std::string_view& text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    const int following = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
    char32_t code = following == 0 ? lead : lead & (0x3FU >> following);
    text.remove_prefix(1);
    for (int i = 0; i < following && !text.empty(); ++i) {
        code = code << 6 | (static_cast<unsigned char>(text[0]) & 0x3FU);
        text.remove_prefix(1);
    }
    return code;
}

}  // namespace

size_t DisplayWidth(std::string_view text) {
    size_t width = 0;
    while (!text.empty()) {
        const char32_t code = TakeCharacter(text);
        width += IsIn(kCombining, code) ? 0 : IsIn(kWide, code) ? 2 : 1;
    }
    return width;
}

std::string AlignColumns(const std::vector<TextRow>& rows) {
    std::vector<size_t> widths;
    for (const TextRow& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], DisplayWidth(row[column]));
        }
    }
    std::string lines;
    for (const TextRow& row : rows) {
        for (size_t column = 0; column < row.size(); ++column) {
            lines += row[column];
            if (column + 1 < row.size()) {
                lines.append(widths[column] - DisplayWidth(row[column]) + 2, ' ');
            }
        }
        lines.erase(lines.find_last_not_of(' ') + 1);
        lines += '\n';
    }
    return lines;
}

}  // namespace imgbasic::host
