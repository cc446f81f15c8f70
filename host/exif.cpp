#include "host/exif.h"

#include <algorithm>
#include <optional>

namespace imgbasic::host {
namespace {

constexpr uint16_t kXResolution = 0x11A;
constexpr uint16_t kYResolution = 0x11B;
constexpr uint16_t kOrientation = 0x112;
constexpr uint16_t kResolutionUnit = 0x128;
constexpr uint16_t kPreviewOffset = 0x201;
constexpr uint16_t kPreviewLength = 0x202;
constexpr uint16_t kExifDirectory = 0x8769;
constexpr uint16_t kWidth = 0xA002;
constexpr uint16_t kHeight = 0xA003;

constexpr uint32_t kNoUnit = 1;
constexpr uint32_t kInch = 2;
constexpr uint32_t kCentimetre = 3;

constexpr uint16_t kShort = 3;
constexpr uint16_t kLong = 4;
constexpr uint16_t kRational = 5;
constexpr size_t kEntrySize = 12;

/// Reads and writes numbers; whatever lies outside the bytes reads as 0 and is not written.
class TiffBytes {
  public:
    explicit TiffBytes(std::span<const std::byte> bytes)
        : bytes_(bytes), bigEndian_(bytes.size() > 1 && bytes[0] == std::byte{'M'}) {}

    uint32_t Number(size_t at, size_t size) const {
        uint32_t value = 0;
        for (size_t i = 0; i < size && Holds(at, size); ++i) {
            value |= std::to_integer<uint32_t>(bytes_[at + i]) << Shift(i, size);
        }
        return value;
    }

    /// Where the entry of `tag` begins in the directory at `directory`.
    std::optional<size_t> Find(size_t directory, uint16_t tag) const {
        const size_t count = Number(directory, 2);
        for (size_t i = 0; i < count; ++i) {
            const size_t entry = directory + 2 + i * kEntrySize;
            if (!Holds(entry, kEntrySize)) {
                break;
            }
            if (Number(entry, 2) == tag) {
                return entry;
            }
        }
        return std::nullopt;
    }

    size_t FirstDirectory() const { return Number(4, 4); }

    /// Where a directory tells the next one's place.
    size_t NextAt(size_t directory) const {
        return directory + 2 + size_t{Number(directory, 2)} * kEntrySize;
    }

    /// The single whole number that `tag` holds, or 0.
    uint32_t Value(size_t directory, uint16_t tag) const {
        const std::optional<size_t> entry = Find(directory, tag);
        return entry ? Number(*entry + 8, Number(*entry + 2, 2) == kShort ? 2 : 4) : 0;
    }

    /// The fraction that `tag` holds, or 0.
    double Fraction(size_t directory, uint16_t tag) const {
        const std::optional<size_t> entry = Find(directory, tag);
        if (!entry || Number(*entry + 2, 2) != kRational) {
            return 0;
        }
        const size_t at = Number(*entry + 8, 4);
        const uint32_t divisor = Number(at + 4, 4);
        return divisor == 0 ? 0 : double{1} * Number(at, 4) / divisor;
    }

    bool Holds(size_t at, size_t size) const {
        return at <= bytes_.size() && size <= bytes_.size() - at;
    }

    void Write(std::span<std::byte> bytes, size_t at, size_t size, uint32_t value) const {
        for (size_t i = 0; i < size && Holds(at, size); ++i) {
            bytes[at + i] = static_cast<std::byte>(value >> Shift(i, size));
        }
    }

    /// Gives `tag`, when it is there and holds one whole number, another value.
    void SetValue(std::span<std::byte> bytes, size_t directory, uint16_t tag,
                  uint32_t value) const {
        const std::optional<size_t> entry = Find(directory, tag);
        const uint32_t type = entry ? Number(*entry + 2, 2) : 0;
        if (type == kShort || type == kLong) {
            Write(bytes, *entry + 8, type == kShort ? 2 : 4, value);
        }
    }

  private:
    size_t Shift(size_t index, size_t size) const {
        return 8 * (bigEndian_ ? size - 1 - index : index);
    }

    std::span<const std::byte> bytes_;
    bool bigEndian_;
};

}  // namespace

void MakeExifUpright(std::vector<std::byte>& exif) {
    const TiffBytes tiff(exif);
    const size_t first = tiff.FirstDirectory();
    tiff.SetValue(exif, first, kOrientation, 1);
    const size_t nextAt = tiff.NextAt(first);
    const size_t second = tiff.Number(nextAt, 4);
    if (second == 0) {
        return;
    }
    const size_t offset = tiff.Value(second, kPreviewOffset);
    const size_t length = tiff.Value(second, kPreviewLength);
    tiff.Write(exif, nextAt, 4, 0);
    if (length > 0 && tiff.Holds(offset, length)) {
        std::fill_n(exif.begin() + static_cast<ptrdiff_t>(offset), length, std::byte{0});
        if (offset + length == exif.size()) {
            exif.resize(offset);
        }
    }
}

int OrientationOfExif(std::span<const std::byte> exif) {
    const TiffBytes tiff(exif);
    const uint32_t orientation = tiff.Value(tiff.FirstDirectory(), kOrientation);
    return orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;
}

void SetExifSize(std::span<std::byte> exif, int32_t width, int32_t height) {
    const TiffBytes tiff(exif);
    const size_t directory = tiff.Value(tiff.FirstDirectory(), kExifDirectory);
    if (directory != 0) {
        tiff.SetValue(exif, directory, kWidth, static_cast<uint32_t>(width));
        tiff.SetValue(exif, directory, kHeight, static_cast<uint32_t>(height));
    }
}

ExifResolution ResolutionOfExif(std::span<const std::byte> exif) {
    const TiffBytes tiff(exif);
    const size_t first = tiff.FirstDirectory();
    const uint32_t unit =
        tiff.Find(first, kResolutionUnit) ? tiff.Value(first, kResolutionUnit) : kInch;
    const double millimetres = unit == kInch ? 25.4 : unit == kCentimetre ? 10 : 0;
    if (millimetres == 0) {
        return {};
    }
    return {tiff.Fraction(first, kXResolution) / millimetres,
            tiff.Fraction(first, kYResolution) / millimetres};
}

void RemoveTiffResolutionUnit(std::span<std::byte> tiff) {
    const TiffBytes tags(tiff);
    tags.SetValue(tiff, tags.FirstDirectory(), kResolutionUnit, kNoUnit);
}

}  // namespace imgbasic::host
