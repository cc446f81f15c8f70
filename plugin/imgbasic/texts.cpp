#include "plugin/imgbasic/texts.h"

namespace imgbasic::texts {

// The Shift-JIS bytes are spelled out, so that no compiler's idea of a source or execution
// character set can change them.
const Text kGray{"グレースケール", "\x83O\x83\x8C\x81[\x83X\x83P\x81[\x83\x8B"};
const Text kMono{"2階調化", "2\x8AK\x92\xB2\x89\xBB"};
const Text kNega{"階調の反転", "\x8AK\x92\xB2\x82\xCC\x94\xBD\x93]"};
const Text kChanDecomp{"チャンネル分解", "\x83`\x83\x83\x83\x93\x83l\x83\x8B\x95\xAA\x89\xF0"};
const Text kChanMerge{"チャンネル結合", "\x83`\x83\x83\x83\x93\x83l\x83\x8B\x8C\x8B\x8D\x87"};
const Text kColReduce{"減色", "\x8C\xB8\x90\x46"};
const Text kScaling{"拡大縮小", "\x8Ag\x91\xE5\x8Fk\x8F\xAC"};

const Text kErrorCaption{"エラー", "\x83G\x83\x89\x81["};
const Text kRed{"赤", "\x90\xD4"};
const Text kGreen{"緑", "\x97\xCE"};
const Text kBlue{"青", "\x90\xC2"};
const Text kAlpha{"α", "\x83\xBF"};
const Text kNotAChannelImage{"カレントレイヤーはチャンネル画像ではありません。",
                             "\x83J\x83\x8C\x83\x93\x83g\x83\x8C\x83\x43\x83\x84\x81[\x82\xCD\x83`"
                             "\x83\x83\x83\x93\x83l\x83\x8B\x89\xE6\x91\x9C\x82\xC5\x82\xCD\x82\xA0"
                             "\x82\xE8\x82\xDC\x82\xB9\x82\xF1\x81\x42"};
const Text kDuplicateChannelImage{"%sチャンネル画像が重複しています。",
                                  "%s\x83`"
                                  "\x83\x83\x83\x93\x83l\x83\x8B\x89\xE6\x91\x9C\x82\xAA\x8F\x64"
                                  "\x95\xA1\x82\xB5\x82\xC4\x82\xA2\x82\xDC\x82\xB7\x81\x42"};
const Text kChannelImageAtOtherLevel{
    "%sチャンネル画像が別階層に存在しています。",
    "%s\x83`"
    "\x83\x83\x83\x93\x83l\x83\x8B\x89\xE6\x91\x9C\x82\xAA\x95\xCA\x8AK\x91w\x82\xC9\x91\xB6\x8D"
    "\xDD\x82\xB5\x82\xC4\x82\xA2\x82\xDC\x82\xB7\x81\x42"};
const Text kMissingChannelImages{"チャンネル画像が揃っていません。",
                                 "\x83`"
                                 "\x83\x83\x83\x93\x83l\x83\x8B\x89\xE6\x91\x9C\x82\xAA\x91\xB5\x82"
                                 "\xC1\x82\xC4\x82\xA2\x82\xDC\x82\xB9\x82\xF1\x81\x42"};
const Text kAlphaMustBeBelow{
    "αチャンネル画像は他のチャンネル画像よりも下に置いてください。",
    "\x83\xBF\x83`\x83\x83\x83\x93\x83l\x83\x8B\x89\xE6\x91\x9C\x82\xCD\x91\xBC\x82\xCC\x83`"
    "\x83\x83\x83\x93\x83l\x83\x8B\x89\xE6\x91\x9C\x82\xE6\x82\xE8\x82\xE0\x89\xBA\x82\xC9\x92u\x82"
    "\xA2\x82\xC4\x82\xAD\x82\xBE\x82\xB3\x82\xA2\x81\x42"};

std::span<const Text* const> All() {
    static constexpr const Text* kAll[] = {
        &kGray,
        &kMono,
        &kNega,
        &kChanDecomp,
        &kChanMerge,
        &kColReduce,
        &kScaling,
        &kErrorCaption,
        &kRed,
        &kGreen,
        &kBlue,
        &kAlpha,
        &kNotAChannelImage,
        &kDuplicateChannelImage,
        &kChannelImageAtOtherLevel,
        &kMissingChannelImages,
        &kAlphaMustBeBelow,
    };
    return kAll;
}

}  // namespace imgbasic::texts
