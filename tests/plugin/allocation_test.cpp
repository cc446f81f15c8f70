#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <climits>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "lib/base/zeroed_block.h"
#include "plugin/imgbasic/col_reduce.h"
#include "plugin/imgbasic/entry.h"
#include "plugin/imgbasic/message_box.h"
#include "plugin/imgbasic/scaling.h"
#include "tests/image/scarce_memory.h"
#include "tests/plugin/private_store.h"

namespace imgbasic {
namespace {

constexpr int32_t kWidth = 6;
constexpr int32_t kHeight = 5;
constexpr size_t kPixels = 64;  ///< of every buffer; enough for the scaled image too

/// What a host sees of one call: the result, and everything that the call may write.
struct Answer {
    int result = 0;
    int applied = 0;  ///< runs asked for
    std::array<uint32_t, 8> outs{7, 7, 7, 7, 50, 7, 7, 7};
    std::array<int32_t, 4> outRect{-7, -7, -7, -7};
    std::string nameBefore = std::string(kLayerNameSize, '\0');
    std::string name = nameBefore;
    std::vector<RGBA16> dst = std::vector<RGBA16>(kPixels);

    bool operator==(const Answer&) const = default;
};

struct Scenario {
    const char* name;
    const char* filter;
    std::array<std::vector<int>, 2> visits;  ///< top-level items visited in each phase
    void (*settle)(ImageProcess& process);   ///< sets options once the dialog is over
    bool batch = false;
    const char* layerNames = "GBAR";  ///< the letters in the layers' names, by call number
};

int applyCalls = 0;

/// The calls of a run, in order.
class FilterRun {
  public:
    explicit FilterRun(const Scenario& scenario) : scenario_(scenario) {
        const char* filter = scenario.filter;
        Add([=, this](Answer&) { return Create() != nullptr; });
        if (!scenario.batch) {
            Add([=, this](Answer&) {
                return ImagePluginDialog(filter, object_, [] { return ++applyCalls > 0; });
            });
        }
        for (int phase = 0; phase < ImagePluginGetPhase(filter); ++phase) {
            Add([=, this](Answer& answer) {
                return ImagePluginPhase2(filter, object_, phase, &answer.outs[5], &answer.outs[6],
                                         &pixels_[0].r, 0, 0, &answer.outs[7]);
            });
            for (const int layer : scenario.visits[static_cast<size_t>(phase)]) {
                Add([=, this](Answer& answer) { return Visit(phase, layer, answer); });
            }
        }
        Add([=, this](Answer&) {
            return scenario_.batch ? ImagePluginBatchDispose(filter, object_)
                                   : ImagePluginDispose(filter, object_);
        });
    }

    size_t Calls() const { return calls_.size(); }

    /// Makes a call in which, after `fault` that succeed, allocations fail, or blocks do.
    Answer Call(size_t index, int fault = INT_MAX, bool failBlocks = false) {
        Answer answer;
        const char tag = scenario_.layerNames[index % 4];
        const std::string name = std::string("[") + tag + "]a name that is kept in a block";
        name.copy(answer.name.data(), name.size());
        answer.nameBefore = answer.name;
        applyCalls = 0;
        {
            const ScopedBlockLimit blocks(failBlocks ? fault : INT_MAX);
            const ScopedAllocationLimit allocations(failBlocks ? INT_MAX : fault);
            try {
                answer.result = calls_[index](answer);
            } catch (const std::bad_alloc&) {
                EXPECT_EQ(index, 0U) << "only creation may throw";
            }
            faultCame_ = allocations.IsPassed();
        }
        answer.applied = applyCalls;
        if (object_ != nullptr && index + 1 < calls_.size()) {
            scenario_.settle(*object_);
        }
        return answer;
    }

    bool FaultCame() const { return faultCame_; }

  private:
    void Add(std::function<int(Answer&)> call) { calls_.push_back(std::move(call)); }

    ImageProcess* Create() {
        object_ = scenario_.batch ? ImagePluginBatchPrepare(scenario_.filter, nullptr, nullptr)
                                  : ImagePluginPrepare2(scenario_.filter, kWidth, kHeight, 0, 1, -1,
                                                        0, 0, 0, nullptr, 0, nullptr);
        return object_;
    }

    bool Visit(int phase, int layer, Answer& answer) {
        const RECT in{0, 0, 4, 4};
        RECT out = std::bit_cast<RECT>(answer.outRect);
        auto& outs = answer.outs;
        const bool result = ImagePluginExecute4(
            scenario_.filter, object_, phase, layer, -1, 0, answer.dst.data(), &out, pixels_.data(),
            &in, false, &outs[0], &outs[1], &outs[2], &outs[4], &outs[3], answer.name.data());
        answer.outRect = std::bit_cast<std::array<int32_t, 4>>(out);
        return result;
    }

    static std::vector<RGBA16> MakePixels() {
        std::vector<RGBA16> pixels;
        for (int i = 0; i < static_cast<int>(kPixels); ++i) {
            const auto value = static_cast<uint16_t>(i * 777);
            pixels.push_back({value, static_cast<uint16_t>(value / 2), 0x1200, kFullScale});
        }
        return pixels;
    }

    const Scenario& scenario_;
    const std::vector<RGBA16> pixels_ = MakePixels();
    std::vector<std::function<int(Answer&)>> calls_;
    ImageProcess* object_ = nullptr;
    bool faultCame_ = false;
};

template <int32_t Target>
void Aim(ImageProcess& process) {
    process.TargetType = Target;
}

template <int32_t Target, bool Graduate>
void Reduce(ImageProcess& process) {
    auto& reduce = static_cast<ReduceColorImageProcess&>(process);
    reduce.TargetType = Target;
    reduce.GraduateReduce = Graduate;
    reduce.SharePalette = Graduate;
    reduce.DitherType = Target + 1;
    reduce.ReduceColor = 5;
}

template <int32_t Kernel>
void Scale(ImageProcess& process) {
    auto& scaling = static_cast<ScalingImageProcess&>(process);
    scaling.width = kWidth;  // a batch object has 512
    scaling.height = kHeight;
    scaling.newWidth = 8;
    scaling.newHeight = 7;
    scaling.InterType = Kernel;
}

const Scenario kScenarios[] = {
    {"gray", "gray", {{{0, 1}}}, Aim<MergedImage>},
    {"mono", "mono", {{{0, 1}}}, Aim<AllLayers>},
    {"mono_batch", "mono", {{{0, 1}}}, Aim<CurrentLayer>, true},
    {"nega", "nega", {{{0, 1}}}, Aim<CurrentLayer>},
    {"reduce_merged", "col_reduce", {{{0, 1}}}, Reduce<MergedImage, false>},
    {"reduce_merged_shared", "col_reduce", {{{0, 1}}}, Reduce<MergedImage, true>},
    {"reduce_all_shared", "col_reduce", {{{0, 1}}}, Reduce<AllLayers, true>},
    {"reduce_batch", "col_reduce", {{{0, 1}}}, Reduce<CurrentLayer, false>, true},
    {"nearest", "scaling", {{{0, 1}}}, Scale<0>},
    {"average", "scaling", {{{0, 1}}}, Scale<1>},
    {"bilinear", "scaling", {{{0, 1}}}, Scale<2>, true},
    {"decompose", "chan_decomp", {{{1, 2, 3, 4}}}, Aim<0>},
    {"merge", "chan_merge", {{{0, 1, 2, 3}, {0, 0, 0, 0}}}, Aim<0>},
    {"merge_incomplete", "chan_merge", {{{0, 1, 2, 3}, {}}}, Aim<0>, false, "GBxR"},
};

void ExpectRefusal(const Answer& answer, const Answer& expected) {
    const Answer untouched;
    EXPECT_EQ(answer.result, 0);
    EXPECT_EQ(answer.applied, 0) << "once the host has agreed, the run is confirmed";
    EXPECT_EQ(answer.outs, untouched.outs);
    EXPECT_EQ(answer.name, answer.nameBefore);
    // Colour reduction reports the area before it begins.
    EXPECT_TRUE(answer.outRect == untouched.outRect || answer.outRect == expected.outRect);
}

/// Makes all calls, of which the one at `faulty` lacks memory; false when it did not need it.
bool RunWithFault(const Scenario& scenario, const std::vector<Answer>& expected, size_t faulty,
                  int fault, bool failBlocks) {
    FilterRun run(scenario);
    bool came = false;
    for (size_t i = 0; i < expected.size(); ++i) {
        if (i == faulty) {
            const Answer answer = run.Call(i, fault, failBlocks);
            came = failBlocks ? answer != expected[i] : run.FaultCame();
            if (answer == expected[i]) {
                continue;
            }
            ExpectRefusal(answer, expected[i]);
        }
        EXPECT_EQ(run.Call(i) == expected[i], true) << "another answer from call " << i;
    }
    return came;
}

// A call that lacks memory is refused, and can be made again as if it had not been made.
TEST(Allocation, FailsWithoutATrace) {
    const ErrorCapture silence([](HWND, const Text&) {});
    for (const Scenario& scenario : kScenarios) {
        ClearPrivateStore();
        std::vector<Answer> expected;
        FilterRun run(scenario);
        for (size_t i = 0; i < run.Calls(); ++i) {
            expected.push_back(run.Call(i));
        }
        for (size_t faulty = 0; faulty < 2 * run.Calls(); ++faulty) {
            const bool failBlocks = faulty >= run.Calls();
            bool came = true;
            for (int fault = 0; came && !HasFailure(); ++fault) {
                const size_t call = faulty % run.Calls();
                const long before = LiveAllocations();
                came = RunWithFault(scenario, expected, call, fault, failBlocks);
                EXPECT_TRUE(LiveAllocations() == before || HasFailure()) << "leaked";
                EXPECT_FALSE(HasFailure())
                    << scenario.name << ", call " << call << ", "
                    << (failBlocks ? "block " : "allocation ") << fault << " fails";
            }
        }
    }
}

}  // namespace
}  // namespace imgbasic
