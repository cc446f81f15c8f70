#include "host/layer_name.h"

#include <gtest/gtest.h>

#include "host/text_encoding.h"

namespace imgbasic::host {
namespace {

LayerNameBytes Bytes(std::string_view name) {
    LayerNameBytes bytes{};
    std::ranges::copy(name.substr(0, bytes.size()), bytes.begin());
    return bytes;
}

std::string Text(const LayerNameBytes& bytes) {
    return {bytes.begin(), std::ranges::find(bytes, '\0')};
}

TEST(LayerName, ReachesTheModuleAsShiftJisCutAtACharacter) {
    const std::string letters(62, 'a');
    const struct {
        std::string name;
        std::string bytes;
    } cases[] = {
        {"", ""},
        {"Sky", "Sky"},
        {"空", "\x8B\xF3"},
        {"ｱ①表～\\~", "\xB1\x87\x40\x95\x5C\x81\x60\\~"},
        {"a😀é", "a??"},
        {"\xE7\xA9|\xFF", "?|?"},
        {letters + "ab", letters + "a"},
        {letters + "空", letters},
        {letters + "ｱ空", letters + "\xB1"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(Text(NameForModule(test.name)), test.bytes) << test.name;
    }
}

TEST(LayerName, KeepsWhatTheBytesCannotHoldWhenOnlyATagChanges) {
    const std::string letters(70, 'a');
    const std::string cut57(57, 'a');
    const std::string kanji = "空空空空空空空空空空空空空空空空空空空空空空空空空空空空a空";
    const std::string kanjiBytes = Text(NameForModule(kanji));
    const struct {
        const char* what;
        std::string name;
        std::string answer;
        std::string expected;
    } cases[] = {
        {"unchanged", "😀", "?", "😀"},
        {"tag before a lossy name", "😀 空", "[G]? \x8B\xF3", "[G]😀 空"},
        {"tag taken from a lossy name", "[A]😀", "?", "😀"},
        {"tag before an empty name", "", "[R]", "[R]"},
        {"tag before a cut name", letters, "[R]" + cut57, "[R]" + letters},
        {"tag before a name cut in a character", kanji, "[R]" + kanjiBytes.substr(0, 57),
         "[R]" + kanji},
        {"tag taken from a cut name", "[A]" + letters, std::string(60, 'a'), letters},
        {"a new name", "😀", "\x90\xC2", "青"},
        {"a tag before another name", "Sky", "[R]Sk", "[R]Sk"},
        {"no tag, though three bytes longer", "Sky", "(R)Sky", "(R)Sky"},
        {"an answer without an end", "x", std::string(64, 'y'), std::string(64, 'y')},
        {"bytes that are no Shift-JIS", "x", "a\x81", "a?"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(NameFromModule(test.name, NameForModule(test.name), Bytes(test.answer)),
                  test.expected)
            << test.what;
    }
}

}  // namespace
}  // namespace imgbasic::host
