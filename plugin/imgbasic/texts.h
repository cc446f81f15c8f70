#pragma once

#include <cstddef>

namespace imgbasic {

/// A text for people in the two encodings that it is needed in. The Shift-JIS bytes are spelled
/// out, so that no compiler's idea of a source or execution character set can change them.
struct Text {
    const char* utf8;
    const char* shiftJis;  ///< code page 932, for the host and the narrow system functions
};

// What the module says apart from what stands with the filters (their names, the lists of their
// options) and the labels in the dialog templates.
namespace texts {

enum class Message : size_t {
    ErrorCaption,
    NotAChannelImage,
    DuplicateChannelImage,     ///< of the channel named in the place of %s
    ChannelImageAtOtherLevel,  ///< of the channel named in the place of %s
    MissingChannelImages,
    AlphaMustBeBelow,
};

/// In the order of Message.
inline constexpr Text kMessages[] = {
    {"エラー", "\x83G\x83\x89\x81["},
    {"カレントレイヤーはチャンネル画像ではありません。",
     "\x83J\x83\x8C\x83\x93\x83g\x83\x8C\x83\x43\x83\x84\x81[\x82\xCD\x83`"
     "\x83\x83\x83\x93\x83l\x83\x8B\x89\xE6\x91\x9C\x82\xC5\x82\xCD\x82\xA0"
     "\x82\xE8\x82\xDC\x82\xB9\x82\xF1\x81\x42"},
    {"%sチャンネル画像が重複しています。",
     "%s\x83`"
     "\x83\x83\x83\x93\x83l\x83\x8B\x89\xE6\x91\x9C\x82\xAA\x8F\x64"
     "\x95\xA1\x82\xB5\x82\xC4\x82\xA2\x82\xDC\x82\xB7\x81\x42"},
    {"%sチャンネル画像が別階層に存在しています。",
     "%s\x83`"
     "\x83\x83\x83\x93\x83l\x83\x8B\x89\xE6\x91\x9C\x82\xAA\x95\xCA\x8AK\x91w\x82\xC9\x91\xB6\x8D"
     "\xDD\x82\xB5\x82\xC4\x82\xA2\x82\xDC\x82\xB7\x81\x42"},
    {"チャンネル画像が揃っていません。",
     "\x83`"
     "\x83\x83\x83\x93\x83l\x83\x8B\x89\xE6\x91\x9C\x82\xAA\x91\xB5\x82"
     "\xC1\x82\xC4\x82\xA2\x82\xDC\x82\xB9\x82\xF1\x81\x42"},
    {"αチャンネル画像は他のチャンネル画像よりも下に置いてください。",
     "\x83\xBF\x83`\x83\x83\x83\x93\x83l\x83\x8B\x89\xE6\x91\x9C\x82\xCD\x91\xBC\x82\xCC\x83`"
     "\x83\x83\x83\x93\x83l\x83\x8B\x89\xE6\x91\x9C\x82\xE6\x82\xE8\x82\xE0\x89\xBA\x82\xC9\x92u"
     "\x82\xA2\x82\xC4\x82\xAD\x82\xBE\x82\xB3\x82\xA2\x81\x42"},
};

constexpr const Text& Of(Message message) {
    return kMessages[static_cast<size_t>(message)];
}

/// The channels in the order of Channel, as they stand in messages.
inline constexpr Text kChannelNames[] = {
    {"赤", "\x90\xD4"}, {"緑", "\x97\xCE"}, {"青", "\x90\xC2"}, {"α", "\x83\xBF"}};

}  // namespace texts
}  // namespace imgbasic
