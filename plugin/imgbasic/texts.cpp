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

const std::array<Text, 3> kTargetTypes{{
    {"結合した画像", "\x8C\x8B\x8D\x87\x82\xB5\x82\xBD\x89\xE6\x91\x9C"},
    {"全レイヤー", "\x91S\x83\x8C\x83\x43\x83\x84\x81["},
    {"カレントレイヤー", "\x83J\x83\x8C\x83\x93\x83g\x83\x8C\x83\x43\x83\x84\x81["},
}};
const std::array<Text, 10> kCalcModes{{
    {"明度平均", "\x96\xBE\x93x\x95\xBD\x8B\xCF"},
    {"RGB平均", "RGB\x95\xBD\x8B\xCF"},
    {"NTSC加重平均(Y)", "NTSC\x89\xC1\x8F\x64\x95\xBD\x8B\xCF(Y)"},
    {"明度(V)", "\x96\xBE\x93x(V)"},
    {"赤チャンネル", "\x90\xD4\x83`\x83\x83\x83\x93\x83l\x83\x8B"},
    {"緑チャンネル", "\x97\xCE\x83`\x83\x83\x83\x93\x83l\x83\x8B"},
    {"青チャンネル", "\x90\xC2\x83`\x83\x83\x83\x93\x83l\x83\x8B"},
    {"彩度(S)", "\x8D\xCA\x93x(S)"},
    {"色差・青(Cb)", "\x90\x46\x8D\xB7\x81\x45\x90\xC2(Cb)"},
    {"色差・赤(Cr)", "\x90\x46\x8D\xB7\x81\x45\x90\xD4(Cr)"},
}};
const std::array<Text, 9> kColorModes{{
    {"白", "\x94\x92"},
    {"赤", "\x90\xD4"},
    {"緑", "\x97\xCE"},
    {"青", "\x90\xC2"},
    {"マゼンタ", "\x83}\x83[\x83\x93\x83^"},
    {"シアン", "\x83V\x83\x41\x83\x93"},
    {"イエロー", "\x83\x43\x83G\x83\x8D\x81["},
    {"描画色", "\x95`\x89\xE6\x90\x46"},
    {"背景色", "\x94w\x8Ci\x90\x46"},
}};
const std::array<Text, 4> kDitherTypes{{
    {"なし", "\x82\xC8\x82\xB5"},
    {"パターン", "\x83p\x83^\x81[\x83\x93"},
    {"誤差拡散(小)", "\x8C\xEB\x8D\xB7\x8Ag\x8EU(\x8F\xAC)"},
    {"誤差拡散(大)", "\x8C\xEB\x8D\xB7\x8Ag\x8EU(\x91\xE5)"},
}};
const std::array<Text, 3> kInterTypes{{
    {"ニアレスト", "\x83j\x83\x41\x83\x8C\x83X\x83g"},
    {"ピクセル平均", "\x83s\x83N\x83Z\x83\x8B\x95\xBD\x8B\xCF"},
    {"バイリニア", "\x83o\x83\x43\x83\x8A\x83j\x83\x41"},
}};
const std::array<Text, 3> kBoundaryTypes{{
    {"クリップ", "\x83N\x83\x8A\x83\x62\x83v"},
    {"クランプ", "\x83N\x83\x89\x83\x93\x83v"},
    {"リピート", "\x83\x8A\x83s\x81[\x83g"},
}};

std::vector<const Text*> All() {
    std::vector<const Text*> all{&kGray,
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
                                 &kAlphaMustBeBelow};
    const auto append = [&](const auto& list) {
        for (const Text& text : list) {
            all.push_back(&text);
        }
    };
    append(kTargetTypes);
    append(kCalcModes);
    append(kColorModes);
    append(kDitherTypes);
    append(kInterTypes);
    append(kBoundaryTypes);
    return all;
}

}  // namespace imgbasic::texts
