#pragma once

#include <vips/vips8>

#include "host/file_metadata.h"

namespace imgbasic::host {

/// What a file tells beside its pixels, by libvips and, where that leaves it out or makes it up,
/// by the file's own header; made upright.
FileMetadata MetadataOf(const vips::VImage& image, const ReadAt& read);

/// Gives an image what libvips writes into a TIFF.
void SetTiffMetadata(const vips::VImage& image, const FileMetadata& metadata);

}  // namespace imgbasic::host
