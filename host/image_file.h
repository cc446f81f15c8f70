#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/document.h"
#include "host/raster_file.h"

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

/// The name of the standard input where images are read, and of the standard output where one is
/// written.
constexpr const char* kStandardStream = "-";

/// Reads OpenRaster with its layers, any other image as a document of one layer with the file's
/// metadata. The content decides the format. "-", and what is no plain file, is read to its end
/// first. What cannot be shown as the file means it is told in `notes`,
/// when given. Throws FileError.
Document LoadDocument(const std::filesystem::path& path, std::vector<std::string>* notes = nullptr,
                      Detail detail = Detail::Everything);

/// What messages call the file: its path, but for "-".
std::string InputName(const std::filesystem::path& path);

/// Starts the libraries that read and write files, which takes longer than a small file does, in a
/// process that is going to fork others. They start on first use otherwise. Throws FileError.
void StartCodecs();

/// The endings, without a dot, of the files that can be written.
std::vector<std::string> OutputFormats();

/// Throws FileError when the name does not end in a format that can be written.
void RequireFormat(const std::filesystem::path& path);

/// Whether files of a format that can be written keep the layers; `extension` such as ".png".
bool KeepsLayers(const std::string& extension);

/// The same from memory; `name` names it in errors and becomes the layer's.
Document LoadDocument(std::span<const std::byte> bytes, const std::string& name,
                      std::vector<std::string>* notes = nullptr);

/// What the header of a file without layers tells, the pixels unread; nothing for OpenRaster and
/// for what can be read only once. Throws FileError.
std::optional<RasterHeader> ReadHeader(const std::filesystem::path& path,
                                       std::vector<std::string>& notes);

/// How to write a document.
struct SaveOptions {
    int bitDepth = 0;                       ///< bits a channel, 8 or 16; 0 takes the document's
    bool overwrite = false;                 ///< an existing file is an error otherwise
    bool strip = false;                     ///< leave out the metadata, the colour profile included
    EncodeOptions encode{.compact = true};  ///< for formats without layers
};

/// Writes the format that the extension names: OpenRaster keeps the layers, the others get the
/// flattened picture and the metadata. The file appears whole or not at all. A document that is
/// moved in needs no second picture in memory. Throws FileError. Returns notes for the user, such
/// as that a format has no alpha and was flattened over white; often empty.
std::vector<std::string> SaveDocument(Document document, const std::filesystem::path& path,
                                      const SaveOptions& options);

/// The same for a picture without layers, which OpenRaster is no format for.
std::vector<std::string> SaveDocument(Picture picture, const std::filesystem::path& path,
                                      const SaveOptions& options);

/// The same into memory, `extension` such as ".png"; `name` names it in errors and notes.
std::vector<std::byte> EncodeDocument(Document document, const std::string& extension,
                                      const std::string& name, const SaveOptions& options,
                                      std::vector<std::string>& notes);
std::vector<std::byte> EncodeDocument(Picture picture, const std::string& extension,
                                      const std::string& name, const SaveOptions& options,
                                      std::vector<std::string>& notes);

}  // namespace imgbasic::host
