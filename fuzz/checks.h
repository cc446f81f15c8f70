#pragma once

#include <cstdint>
#include <span>
#include <string>

// What a fuzzer's bytes are fed to, each in the file NAME_check.cpp. The answer of a check is what
// is wrong, empty when nothing is.

namespace imgbasic {

namespace host {
struct Document;
}

/// Uses a dialog with a preview, or that of scaling, in the steps that `data` says.
std::string CheckDialogRules(std::span<const uint8_t> data);

/// Plays a hostile host: `data` says which of the exports are called, in which order, on which of
/// two filter objects and with what. The host keeps to what no module can do without: objects are
/// used only while they live, and buffers hold the image, or at least the rectangle handed in of
/// an image too large to exist. Returns what broke a rule of the protocol; a step outside a buffer
/// meets an unmapped page.
std::string CheckExports(std::span<const uint8_t> data);

/// Reads `data` as a compressed pixel stream, once whole and once in pieces, and compares with
/// what zlib makes of its DEFLATE data: the verdict, the bytes before a fault and one log line
/// for every failure.
///
/// So that arbitrary bytes make useful streams, the signature is put right, the size is taken
/// modulo 128 KiB, and the reserved header field says how large the pieces are.
std::string CheckInflate(std::span<const uint8_t> data);

/// Reads `data` as an archive or, when it does not begin as one, as the stack.xml of an archive in
/// which data/a.png and data/b.png are pictures. A document that is read is written and read again,
/// as it is and with a change to its layers. Nothing is wrong with a file that is rejected.
std::string CheckOpenRaster(std::span<const uint8_t> data);

/// Whether a document is the same once it is written and read again.
bool ComesBack(const host::Document& document);

/// Reads `data` as an image of any format. One that is read whole is written in a lossless format
/// and read again. Nothing is wrong with a file that is rejected.
std::string CheckRaster(std::span<const uint8_t> data);

/// Takes `data` for the file that holds the stored options, stores a value in it and removes a
/// filter from it: all else stays, and what is stored is found again. The file is the program's,
/// ImgbasicSettingsFile.
std::string CheckSettings(std::span<const uint8_t> data);

}  // namespace imgbasic
