#pragma once

#include <string>
#include <vips/vips8>

#include "host/image_file.h"

namespace imgbasic::host {

/// Starts libvips, silent: what matters comes back as an error. Throws FileError.
void StartVips();

/// How often this thread has opened an image with a side that none has, such as 0. libvips goes on
/// with a side of its own choice then.
int ImpossibleSides();

/// What libvips complained about last, in one line; its buffer is empty then.
std::string LastLine(const vips::VError& error);

/// Does `work`, a call into libvips, and turns its errors into ours, around its own last line.
template <typename Work>
auto Guarded(const std::string& before, const std::string& after, Work work) {
    StartVips();
    try {
        return work();
    } catch (const vips::VError& error) {
        throw FileError(before + " (" + LastLine(error) + ")" + after);
    }
}

}  // namespace imgbasic::host
