#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "fuzz/checks.h"

namespace imgbasic {
namespace {

struct Corpus {
    const char* name;
    std::string (*check)(std::span<const uint8_t> data);
};

class Fuzzers : public testing::TestWithParam<Corpus> {};

TEST_P(Fuzzers, FindNothingInTheirCorpus) {
    size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(
             std::string(IMGBASIC_FUZZ_CORPUS "/") + GetParam().name)) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<uint8_t> data{std::istreambuf_iterator<char>(file), {}};
        EXPECT_EQ(GetParam().check(data), "") << entry.path();
        ++files;
    }
    EXPECT_GT(files, 2U);
}

constexpr Corpus kCorpora[] = {
    {"inflate", CheckInflate},
#ifdef IMGBASIC_ALL_CHECKS
    {"dialog_rules", CheckDialogRules}, {"exports", CheckExports},
    {"openraster", CheckOpenRaster},    {"raster", CheckRaster},
    {"settings", CheckSettings},
#endif
};

INSTANTIATE_TEST_SUITE_P(All, Fuzzers, testing::ValuesIn(kCorpora),
                         [](const auto& corpus) { return std::string(corpus.param.name); });

}  // namespace
}  // namespace imgbasic
