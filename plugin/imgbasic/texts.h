#pragma once

#include <span>

namespace imgbasic {

/// A text for people in the two encodings that it is needed in.
struct Text {
    const char* utf8;
    const char* shiftJis;  ///< code page 932, for the host and the narrow system functions
};

/// Every text that the module shows.
namespace texts {

extern const Text kGray;
extern const Text kMono;
extern const Text kNega;
extern const Text kChanDecomp;
extern const Text kChanMerge;
extern const Text kColReduce;
extern const Text kScaling;

extern const Text kErrorCaption;

// The channels, as they stand in messages.
extern const Text kRed;
extern const Text kGreen;
extern const Text kBlue;
extern const Text kAlpha;

// In the place of %s: the name of a channel.
extern const Text kNotAChannelImage;
extern const Text kDuplicateChannelImage;
extern const Text kChannelImageAtOtherLevel;
extern const Text kMissingChannelImages;
extern const Text kAlphaMustBeBelow;

/// All of them, for checks.
std::span<const Text* const> All();

}  // namespace texts
}  // namespace imgbasic
