#pragma once

#include <cstddef>
#include <span>

namespace imgbasic::host {

/// Makes sure that no file which is opened later takes the place of a standard stream that the
/// program was started without, and that a reader who goes away is an error, not the end.
void SecureStandardStreams();

/// Whether what is written to the standard output would fill a terminal.
bool IsStandardOutputTerminal();

/// Writes all bytes to the standard output. Throws FileError.
void WriteStandardOutput(std::span<const std::byte> bytes);

}  // namespace imgbasic::host
