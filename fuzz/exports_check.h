#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace imgbasic {

/// Plays a hostile host: `data` says which of the exports are called, in which order, on which of
/// two filter objects and with what. The host keeps to what no module can do without: objects are
/// used only while they live, and buffers hold the image, or at least the rectangle handed in of
/// an image too large to exist. Returns what broke a rule of the protocol, empty when nothing did;
/// a step outside a buffer meets an unmapped page.
std::string CheckExports(std::span<const uint8_t> data);

}  // namespace imgbasic
