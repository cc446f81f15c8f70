#include "tests/record/checksum.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace imgbasic {
namespace {

struct Row {
    const char* group;
    uint64_t sum;
};

// Of results that were compared with an independent implementation, pixel by pixel. A failure
// prints the line that would take the place of the one here, for the day on which results are
// meant to change.
// clang-format off
constexpr Row kRecorded[] = {
    {"gray, CalcMode 0", 0x846476bcdd33fa14},
    {"gray, CalcMode 1", 0xfa7962998d6e62e},
    {"gray, CalcMode 2", 0x9eb63bea88525ce1},
    {"gray, CalcMode 3", 0xec6b45ae9a488421},
    {"gray, CalcMode 4", 0xc5da0f8f57970ff0},
    {"gray, CalcMode 5", 0xabff040af1c869e5},
    {"gray, CalcMode 6", 0x26b5dcba0a0f9f65},
    {"gray, CalcMode 7", 0x6b2be4cb701f462d},
    {"gray, CalcMode 8", 0xed2313015fc926c4},
    {"gray, CalcMode 9", 0xab08409be0bd703},
    {"gray, CalcMode 10", 0xd5970077a222c729},
    {"gray, targets", 0xc605cb7d24cb0636},
    {"mono, Threshold 1", 0xb6fda892a0bbc76c},
    {"mono, Threshold 128", 0x561b21d2470b082d},
    {"mono, Threshold 255", 0xffc11d7bd816879e},
    {"mono, targets", 0xade3cfef017ecd3},
    {"mono, other thresholds", 0x464c0dca3a1c86c6},
    {"nega, pictures", 0xe245d29e6b6db977},
    {"nega, targets", 0xfd31122de9f8625b},
    {"col_reduce, dither 0", 0x74e9f354f684824f},
    {"col_reduce, dither 0, shared", 0x7fedec41eb69b236},
    {"col_reduce, dither 0, graduated", 0xb556e48ce7e1581a},
    {"col_reduce, dither 0, graduated, shared", 0x3cb89b717eeddbf4},
    {"col_reduce, dither 1", 0xf9cb60777b9c04b4},
    {"col_reduce, dither 1, shared", 0x797fd62d341c4991},
    {"col_reduce, dither 1, graduated", 0x20497c3fd2ee6ad5},
    {"col_reduce, dither 1, graduated, shared", 0xb16cc0c985860233},
    {"col_reduce, dither 2", 0xcbbc1fe66355ee32},
    {"col_reduce, dither 2, shared", 0x6dd96bc39017a60b},
    {"col_reduce, dither 2, graduated", 0x160236a863888ff3},
    {"col_reduce, dither 2, graduated, shared", 0x190f88d159b61d66},
    {"col_reduce, dither 3", 0x24a163688c65613c},
    {"col_reduce, dither 3, shared", 0xd15e6d97ad08f35e},
    {"col_reduce, dither 3, graduated", 0xb2a15939dfec95b8},
    {"col_reduce, dither 3, graduated, shared", 0xfbe2c535f01fe200},
    {"col_reduce, targets", 0xbe65e57683dbdde3},
    {"col_reduce, unusual options", 0xe8f490fb3e582428},
    {"scaling, InterType 0", 0x743852a65192826e},
    {"scaling, InterType 1", 0xa5d5ef5832f57be2},
    {"scaling, InterType 3", 0x66452a41a664a7a0},
    {"scaling, InterType 2, boundary 0", 0xf8314fec08eef6a8},
    {"scaling, InterType 2, boundary 0, fading", 0xf8314fec08eef6a8},
    {"scaling, InterType 2, boundary 1", 0xefb432d8958e5e7d},
    {"scaling, InterType 2, boundary 1, fading", 0x8b8d6f4284d56ae0},
    {"scaling, InterType 2, boundary 2", 0x71e57e24e49e40f3},
    {"scaling, InterType 2, boundary 2, fading", 0x61562b390e888b38},
    {"scaling, InterType 2, boundary 3", 0xd9daca76010ee30a},
    {"scaling, InterType 2, boundary 3, fading", 0xd9daca76010ee30a},
    {"scaling, percentages", 0xcf163da6577f52cb},
    {"chan_merge, flat", 0xb847c40ebb5af025},
    {"chan_decomp, flat", 0x89bae2a97ac48cdc},
    {"chan_merge, in a folder", 0x7dfa68600e5063a1},
    {"chan_decomp, in a folder", 0xa9f35e53b96cad26},
    {"ResampleNearest", 0xf9b3cef9de935d23},
    {"ResampleAverage", 0xc3dbeae346f167b8},
    {"ResampleBilinear, boundary 0", 0x31c635bcf6fd1bc8},
    {"ResampleBilinear, boundary 1", 0xf0ced990fc42533d},
    {"ResampleBilinear, boundary 2", 0x5a3bbfc931dee3c0},
    {"ResampleBilinear, boundary 3", 0x8a83743633fd8f0},
    {"Composite, every kind", 0x94bac96977a0dc58},
    {"Flatten, random documents", 0x4232f6fb99960a40},
    {"MapToIndexed, any palette", 0x8aa1616f983c6f00},
    {"QuantizePalette, powers of two", 0xe8eea987c604d355},
};
// clang-format on

}  // namespace

Checksum::~Checksum() {
    const auto row = std::ranges::find(kRecorded, group_, &Row::group);
    if (row == std::end(kRecorded) || row->sum != sum_) {
        ADD_FAILURE() << "other results; their line would be\n    {\"" << group_ << "\", 0x"
                      << std::hex << sum_ << "},";
    }
}

}  // namespace imgbasic
