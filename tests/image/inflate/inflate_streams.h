#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace imgbasic {

using Bytes = std::vector<uint8_t>;

/// Writes DEFLATE data bit by bit.
class BitWriter {
  public:
    /// The low `count` bits of `value`, lowest first: header fields and extra bits.
    BitWriter& Number(uint32_t value, int count) {
        for (int i = 0; i < count; ++i) {
            Bit((value >> i) & 1);
        }
        return *this;
    }
    /// A Huffman code as it is written down: '0' and '1', first bit first.
    BitWriter& Code(std::string_view code) {
        for (const char bit : code) {
            Bit(bit == '1' ? 1 : 0);
        }
        return *this;
    }
    BitWriter& AlignToByte() {
        count_ = bytes_.size() * 8;
        return *this;
    }
    operator Bytes() const { return bytes_; }

  private:
    void Bit(uint32_t bit) {
        if (count_ % 8 == 0) {
            bytes_.push_back(0);
        }
        bytes_.back() |= static_cast<uint8_t>(bit << (count_++ % 8));
    }

    Bytes bytes_;
    size_t count_ = 0;
};

/// A pixel stream: header, `fields` that the flags announce, data. The decoder does not look at
/// the reserved header field.
inline Bytes PixelStream(size_t size, const Bytes& data, uint32_t flags = 0,
                         const std::vector<uint32_t>& fields = {}, uint32_t reserved = 0xDEADBEEF) {
    BitWriter writer;
    writer.Number(0xFA41, 16).Number(flags, 16).Number(static_cast<uint32_t>(size), 32);
    writer.Number(reserved, 32);
    for (const uint32_t field : fields) {
        writer.Number(field, 32);
    }
    Bytes stream = writer;
    stream.insert(stream.end(), data.begin(), data.end());
    return stream;
}

/// `bytes`, fewer than 64 KiB, as one stored block.
inline Bytes StoredBlock(const Bytes& bytes) {
    const auto length = static_cast<uint32_t>(bytes.size());
    Bytes data = BitWriter().Number(1, 3).AlignToByte().Number(length, 16).Number(~length, 16);
    data.insert(data.end(), bytes.begin(), bytes.end());
    return data;
}

}  // namespace imgbasic
