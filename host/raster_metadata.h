#pragma once

#include <vips/vips8>

#include "host/file_metadata.h"

namespace imgbasic::host {

/// What libvips tells of a file, made upright.
FileMetadata MetadataOf(const vips::VImage& image);

/// Gives an image what libvips writes into a TIFF.
void SetTiffMetadata(const vips::VImage& image, const FileMetadata& metadata);

}  // namespace imgbasic::host
