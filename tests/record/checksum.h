#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <string>
#include <utility>

namespace imgbasic {

/// Results of many cases folded into one number. At the end of its life it is compared with what
/// is recorded for its group; every vector form has to give the same.
class Checksum {
  public:
    explicit Checksum(std::string group) : group_(std::move(group)) {}
    ~Checksum();
    Checksum(const Checksum&) = delete;
    Checksum& operator=(const Checksum&) = delete;

    template <std::integral... Integers>
    void Add(Integers... values) {
        (Fold(static_cast<uint64_t>(values)), ...);
    }
    template <typename Range>
    void AddEach(const Range& values) {
        for (const auto& value : values) {
            if constexpr (std::is_integral_v<std::decay_t<decltype(value)>>) {
                Add(value);
            } else {
                Fold(std::bit_cast<uint64_t>(value));
            }
        }
    }

  private:
    void Fold(uint64_t value) { sum_ = (std::rotl(sum_, 7) ^ value) * 0x9E3779B97F4A7C15; }

    std::string group_;
    uint64_t sum_ = 0;
};

}  // namespace imgbasic
