#include "plugin/imgbasic/message_box.h"

#include <gmock/gmock.h>

#include "tests/viewer/viewer_hand.h"

namespace imgbasic {
namespace {

// Whatever code page the process runs in: `./dev test` has this one run in another one too.
TEST(MessageBoxText, IsJapanese) {
    const auto show = [] {
        ShowError(nullptr, texts::Of(texts::Message::DuplicateChannelImage),
                  texts::kChannelNames[1]);
    };
    EXPECT_THAT(viewer::WithBoxesAnswered(show, IDOK),
                testing::ElementsAre(L"エラー: 緑チャンネル画像が重複しています。"));
}

}  // namespace
}  // namespace imgbasic
