#pragma once

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

}  // namespace texts
}  // namespace imgbasic
