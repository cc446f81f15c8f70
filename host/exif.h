#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace imgbasic::host {

/// Changes tags of an EXIF block, which is a TIFF structure, in place, so that what is not
/// understood (makers' notes, which count from the block's start) stays as it is. A damaged block
/// is left alone as far as it is damaged.

/// The orientation becomes the upright one and the embedded preview, which shows the picture
/// before any change, goes.
void MakeExifUpright(std::vector<std::byte>& exif);

/// How the picture lies in its file, 1 to 8; 1, upright, where the block tells none.
int OrientationOfExif(std::span<const std::byte> exif);

/// The size of the picture, where the block tells one.
void SetExifSize(std::span<std::byte> exif, int32_t width, int32_t height);

struct ExifResolution {
    double x = 0;  ///< pixels a millimetre; 0 when the block tells none
    double y = 0;
};

ExifResolution ResolutionOfExif(std::span<const std::byte> exif);

/// The same structure is a TIFF file's: its resolution becomes a mere ratio, without a unit.
void RemoveTiffResolutionUnit(std::span<std::byte> tiff);

}  // namespace imgbasic::host
