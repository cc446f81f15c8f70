#pragma once

#include <array>
#include <vector>

namespace imgbasic {

/// A text for people in the two encodings that it is needed in.
struct Text {
    const char* utf8;
    const char* shiftJis;  ///< code page 932, for the host and the narrow system functions
};

/// Every text that the module shows, but for the labels in the dialog templates.
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

// The lists of the options dialogs, in the order of the options' values.
extern const std::array<Text, 3> kTargetTypes;
extern const std::array<Text, 10> kCalcModes;
extern const std::array<Text, 9> kColorModes;
extern const std::array<Text, 4> kDitherTypes;
extern const std::array<Text, 3> kInterTypes;
extern const std::array<Text, 3> kBoundaryTypes;

/// All of them, for checks.
std::vector<const Text*> All();

}  // namespace texts
}  // namespace imgbasic
