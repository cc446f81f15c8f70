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

}  // namespace imgbasic::texts
