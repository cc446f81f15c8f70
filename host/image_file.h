#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/document.h"

namespace imgbasic::host {

/// A file that cannot be read or written; the message names it, the fault and the way out.
class FileError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// How much of a file is wanted.
enum class Detail {
    Everything,
    /// Where a file tells its layers without their pixels, none of these; a layer's bounds are
    /// then where its picture lies, perhaps outside the image.
    Outline,
};

/// Reads PNG, JPEG, WebP or TIFF as a document of one layer, OpenRaster with its layers. The
/// content decides the format. What cannot be shown as the file means it is told in `notes`, when
/// given. Throws FileError.
Document LoadDocument(const std::filesystem::path& path, std::vector<std::string>* notes = nullptr,
                      Detail detail = Detail::Everything);

/// Whether a file of that name keeps the layers. Throws FileError for an unknown ending.
bool KeepsLayers(const std::filesystem::path& path);

/// How to write a document.
struct SaveOptions {
    int bitDepth = 0;        ///< bits a channel, 8 or 16; 0 takes the document's
    bool overwrite = false;  ///< an existing file is an error otherwise
};

/// Writes the format that the extension names: OpenRaster keeps the layers, the others get the
/// flattened picture. The file appears whole or not at all. Throws FileError. Returns notes for
/// the user, such as that a format has no alpha and was flattened over white; often empty.
std::vector<std::string> SaveDocument(const Document& document, const std::filesystem::path& path,
                                      const SaveOptions& options);

/// Writes the flattened picture, at 8 bits a channel, as a PNG with a palette of exactly its
/// colours, and returns true; returns false and writes nothing when it has more than 256. Throws
/// FileError, also when `path` does not end in ".png".
bool SaveIndexedPng(const Document& document, const std::filesystem::path& path,
                    const SaveOptions& options);

}  // namespace imgbasic::host
