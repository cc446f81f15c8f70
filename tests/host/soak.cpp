#include <malloc.h>

#include <cstdio>

#include "host/driver.h"
#include "host/options.h"
#include "plugin/imgbasic/filters.h"
#include "tests/host/test_files.h"

/// Nobody's options: there is no such file, and none can be made.
extern "C" const char* ImgbasicSettingsFile() {
    return "/proc/settings.reg";
}

namespace imgbasic::host {
namespace {

constexpr int kRuns = 10000;
constexpr int kWarmUp = 100;
/// Bytes; less than the smallest leak that there can be, a byte in every run.
constexpr size_t kMargin = 8000;

/// Bytes of the heap that are in use; what the C library keeps for the next allocations counts
/// too, unless it is told not to (GLIBC_TUNABLES).
size_t InUse() {
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

RunRequest AnyRequest(RandomDocuments& random, const FilterRow& row) {
    constexpr uint32_t kMostPixels = 40;  // of a side, so that scaling stays quick
    RunRequest request{.filter = row.name};
    request.current = {static_cast<int32_t>(random.Below(4)),
                       static_cast<int32_t>(random.Below(3)) - 1};
    for (const FilterOption& option : row.options) {
        const auto values = static_cast<uint32_t>(option.most - option.least) + 1;
        const auto offset = random.Below(std::min(values, kMostPixels));
        request.options.push_back({&option, option.least + static_cast<int32_t>(offset)});
    }
    return request;
}

TEST(Soak, EveryRunGivesItsMemoryBack) {
    // The module's messages, which are many.
    ASSERT_NE(std::freopen("/dev/null", "w", stderr), nullptr);
    const Module module = LoadModule(FindModule());
    RandomDocuments random(1);
    size_t before = 0;
    int changed = 0;
    for (int run = 0; run < kRuns; ++run) {
        before = run == kWarmUp ? InUse() : before;
        Document document = random.AnyDocument(19, 14);
        const FilterRow& row = kFilterRows[random.Below(kFilterRows.size())];
        // Only what was taken apart can be merged.
        if (std::string_view(row.name) == "chan_merge") {
            RunRequest apart = AnyRequest(random, kRow<ChannelDecomposeImageProcess>);
            apart.current = {};
            document = RunFilter(module, std::move(document), apart).document;
        }
        const RunOutcome outcome = RunFilter(module, document, AnyRequest(random, row));
        changed += outcome.status == RunStatus::Done ? 1 : 0;
    }
    EXPECT_GT(changed, kRuns / 2);
    EXPECT_LE(InUse(), before + kMargin);
    std::printf("%d of %d runs changed their document; %zu bytes in use, %zu after %d runs\n",
                changed, kRuns, InUse(), before, kWarmUp);
}

}  // namespace
}  // namespace imgbasic::host
