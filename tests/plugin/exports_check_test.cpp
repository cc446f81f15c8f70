#include "fuzz/exports_check.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace imgbasic {
namespace {

TEST(Exports, StandUpToTheFuzzersCorpus) {
    size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(IMGBASIC_FUZZ_CORPUS "/exports")) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<uint8_t> data{std::istreambuf_iterator<char>(file), {}};
        EXPECT_EQ(CheckExports(data), "") << entry.path();
        ++files;
    }
    EXPECT_GT(files, 10U);
}

}  // namespace
}  // namespace imgbasic
