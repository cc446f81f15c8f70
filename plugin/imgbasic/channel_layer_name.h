#pragma once

#include <cstddef>
#include <string_view>

namespace imgbasic {

/// What the name of a layer that holds one channel begins with, in the order of Channel.
constexpr std::string_view kChannelTags[] = {"[R]", "[G]", "[B]", "[A]"};
constexpr size_t kChannelTagLength = 3;

/// The name in a host's buffer of kLayerNameSize bytes, which may lack the terminator; empty for
/// a null buffer.
std::string_view ReadLayerName(const char* buffer);

/// Writes `name`, cut to the buffer's kLayerNameSize bytes with the terminator; nothing to a null
/// buffer.
void WriteLayerName(char* buffer, std::string_view name);

}  // namespace imgbasic
