#include "plugin/imgbasic/entry.h"

#include <gtest/gtest.h>

#include <bit>
#include <cctype>
#include <memory>
#include <numeric>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "plugin/imgbasic/filter_table.h"
#include "plugin/imgbasic/filters.h"
#include "tests/plugin/private_store.h"

namespace imgbasic {
namespace {

ImageProcess* Prepare(const char* name, ImageProcess* reference = nullptr) {
    return ImagePluginPrepare2(name, 30, 20, 7, 2, 1, 0x112233, 0x445566, 1, nullptr, 2, reference);
}

bool Agree() {
    return true;
}

bool Refuse() {
    return false;
}

TEST(Entry, AnswersTheQueriesForEveryFilter) {
    for (const FilterRow& row : kFilterRows) {
        std::string name = row.name;
        name[1] = static_cast<char>(std::toupper(name[1]));
        SCOPED_TRACE(name);
        EXPECT_STREQ(PluginGetName(name.c_str()), row.displayName.shiftJis);
        EXPECT_EQ(ImagePluginIsSizeChange(name.c_str()), row.changesSize);
        EXPECT_EQ(ImagePluginIsBatchEnable(name.c_str()), row.batch != BatchUse::None);
        EXPECT_EQ(ImagePluginGetPhase(name.c_str()), row.phases);
    }
}

TEST(Entry, KnowsNoOtherName) {
    // Without a terminator: only the address sanitizer sees a read past it.
    const auto endless = std::make_unique<char[]>(12);
    std::fill_n(endless.get(), 12, 'g');
    const char* const unknown[] = {nullptr, "", "gra", "gray ", "grayy", "chan", endless.get()};
    for (const char* name : unknown) {
        int cancelled = 5;
        EXPECT_EQ(PluginGetName(name), nullptr);
        EXPECT_FALSE(ImagePluginIsSizeChange(name));
        EXPECT_FALSE(ImagePluginIsBatchEnable(name));
        EXPECT_EQ(ImagePluginGetPhase(name), 0);
        EXPECT_EQ(Prepare(name), nullptr);
        EXPECT_EQ(ImagePluginBatchPrepare(name, nullptr, &cancelled), nullptr);
        EXPECT_EQ(cancelled, 5);
        EXPECT_FALSE(ImagePluginBatchDispose(name, nullptr));
    }
}

/// What the exports answer that forward to an object, but for those that end it.
std::vector<int> Answers(const char* name, ImageProcess* object) {
    double x = 3;
    double y = 4;
    ImagePluginAdjustScale(name, object, 0, 0, &x, &y);
    return {ImagePluginDialog(name, object, Agree),
            ImagePluginPhase2(name, object, 0, nullptr, nullptr, nullptr, 0, 0, nullptr),
            ImagePluginExecute4(name, object, 0, 0, -1, 0, nullptr, nullptr, nullptr, nullptr,
                                false, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
            ImagePluginAdjustLocate2(name, object, 0, 0, 0, &x, &y), x == 3 && y == 4};
}

const std::vector<int> kNothing{0, 0, 0, 0, true};

TEST(Entry, LeavesAnObjectAloneUnderAnUnknownNameAndAnswersForNone) {
    ImageProcess* object = Prepare("scaling");
    EXPECT_EQ(Answers("?", object), kNothing);
    EXPECT_EQ(object->applyCallback, nullptr);
    EXPECT_FALSE(ImagePluginDispose("?", object));
    EXPECT_FALSE(ImagePluginBatchDispose("?", object));
    EXPECT_TRUE(ImagePluginDispose("scaling", object));
    EXPECT_EQ(Answers("scaling", nullptr), kNothing);
    EXPECT_FALSE(ImagePluginDispose("scaling", nullptr));
    EXPECT_TRUE(ImagePluginBatchDispose("scaling", nullptr));
}

/// What the host told an object, and that it is new in all else.
void ExpectCreated(const ImageProcess& object, const FilterRow& row,
                   const std::vector<int64_t>& told, const ImageProcess* reference) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ((std::vector<int64_t>{object.width, object.height, object.hostParam, object.curLayer,
                                    object.curSubLayer, object.drawColor, object.backColor}),
              told);
    EXPECT_EQ(object.reference, reference);
    EXPECT_EQ(object.ownerWindow, nullptr);
    EXPECT_EQ(object.applyCallback, nullptr);
    EXPECT_EQ(object.mergedImage, nullptr);
    for (const FilterOption& option : row.options) {
        EXPECT_TRUE(option.get(object) == option.initial || !option.isStored) << option.name;
    }
}

TEST(Entry, CreatesObjectsWithWhatTheHostTold) {
    ClearPrivateStore();
    ImageProcess* reference = Prepare("nega");
    for (const FilterRow& row : kFilterRows) {
        ImageProcess* object = Prepare(row.name, reference);
        ExpectCreated(*object, row, {30, 20, 7, 2, 1, 0x112233, 0x445566}, reference);
        EXPECT_TRUE(ImagePluginDispose(row.name, object));
        int cancelled = 5;
        object = ImagePluginBatchPrepare(row.name, nullptr, &cancelled);
        EXPECT_EQ(cancelled, 5) << "refused or done, but not cancelled";
        ASSERT_EQ(object != nullptr, row.batch != BatchUse::None);
        if (object != nullptr) {
            const int64_t side = row.changesSize ? 512 : 0;  // scaling shows percentages of 512
            ExpectCreated(*object, row, {side, side, 0, 0, -1, 0, 0}, nullptr);
            EXPECT_TRUE(ImagePluginBatchDispose(row.name, object));
        }
    }
    EXPECT_TRUE(ImagePluginDispose("nega", reference));
}

TEST(Entry, RepeatsAFilterWithTheOptionsOfItsReference) {
    const struct {
        const char* filter;
        const char* referenced;
        std::vector<int32_t> repeated;  ///< the target is the object's own
    } cases[] = {{"gray", "gray", {0, 0, 0}},
                 {"mono", "mono", {255, 0}},
                 {"mono", "nega", {128, 0}},
                 {"nega", "nega", {0}},
                 {"col_reduce", "col_reduce", {256, 0, 0, 1, 1}}};
    for (const auto& c : cases) {
        ImageProcess* reference = Prepare(c.referenced);
        for (const FilterOption& option : FindFilter(c.referenced)->options) {
            option.set(*reference, option.initial != option.most ? option.most : option.least);
        }
        ImageProcess* object = Prepare(c.filter, reference);
        EXPECT_EQ(ImagePluginDialog(c.filter, object, Refuse), 0) << "refused, not cancelled";
        EXPECT_EQ(ImagePluginDialog(c.filter, object, Agree), 1);
        std::vector<int32_t> repeated;
        for (const FilterOption& option : FindFilter(c.filter)->options) {
            repeated.push_back(option.get(*object));
        }
        EXPECT_EQ(repeated, c.repeated) << c.filter;
        ImagePluginDispose(c.filter, object);
        ImagePluginDispose(c.referenced, reference);
    }
}

TEST(Entry, OpensOneDialogAtATime) {
    ImageProcess* outer = Prepare("gray");
    const auto nested = [] {
        ImageProcess* inner = Prepare("mono");
        EXPECT_EQ(ImagePluginDialog("mono", inner, Agree), 0);
        ImagePluginDispose("mono", inner);
        int cancelled = 5;
        EXPECT_EQ(ImagePluginBatchPrepare("scaling", nullptr, &cancelled), nullptr);
        EXPECT_EQ(cancelled, 5) << "nobody did";
        return true;
    };
    EXPECT_EQ(ImagePluginDialog("gray", outer, [] { return throw 1, true; }), 0);
    EXPECT_EQ(ImagePluginDialog("gray", outer, nested), 1);
    EXPECT_EQ(ImagePluginDialog("gray", outer, Refuse), -1);
    EXPECT_EQ(ImagePluginDialog("gray", outer, Agree), 1);
    ImagePluginDispose("gray", outer);
}

/// Keeps what it is handed, as numbers, or throws.
class RecordingProcess final : public ImageProcess {
  public:
    std::vector<uint64_t> heard;
    bool throws = false;

    template <typename Value>
    static uint64_t Number(Value value) {
        if constexpr (std::is_pointer_v<Value>) {
            return reinterpret_cast<uintptr_t>(value);
        } else {
            return static_cast<uint64_t>(value);
        }
    }
    template <typename... Values>
    bool Hear(Values... values) {
        heard = {Number(values)...};
        return throws ? throw std::bad_alloc() : true;
    }
    int BatchPrepare() override { return Hear(); }
    bool BatchDispose() override { return Hear(); }
    int Dialog(ApplyCallback apply) override { return Hear(apply); }
    int Phase(int phase, uint32_t* newWidth, uint32_t* newHeight, const RGBA16* merged, uint64_t u1,
              uint64_t u2, uint32_t* flag) override {
        return Hear(phase, newWidth, newHeight, merged, u1, u2, flag) ? -2 : 0;
    }
    bool Execute(const ExecuteArgs& a) override {
        return Hear(a.phase, a.layer, a.subLayer, a.unused, a.dst, a.outRect, a.src, a.inRect,
                    a.skipPixels, a.resultCode, a.resultKind, a.layerMode, a.layerOpacity,
                    a.layerFlag, a.layerName);
    }
    void AdjustScale(int u1, int u2, double* x, double* y) override { Hear(u1, u2, x, y); }
    bool AdjustLocate(int index, int layer, int subLayer, double* x, double* y) override {
        return Hear(index, layer, subLayer, x, y);
    }
    bool Dispose() override { return Hear(); }
};

/// An address that nobody follows.
template <typename Pointer>
Pointer At(uintptr_t address) {
    return std::bit_cast<Pointer>(address);
}

TEST(Entry, HandsArgumentsOnInTheirOrder) {
    RecordingProcess process;
    const auto heard = [&](uint64_t count) {
        std::vector<uint64_t> numbers(count);
        std::iota(numbers.begin(), numbers.end(), 1);
        return process.heard == numbers;
    };
    EXPECT_EQ(ImagePluginDialog("gray", &process, At<bool (*)()>(1)), 1);
    EXPECT_TRUE(heard(1));
    EXPECT_EQ(ImagePluginPhase2("gray", &process, 1, At<uint32_t*>(2), At<uint32_t*>(3),
                                At<const uint16_t*>(4), 5, 6, At<uint32_t*>(7)),
              -2);
    EXPECT_TRUE(heard(7));
    EXPECT_TRUE(ImagePluginExecute4("gray", &process, 1, 2, 3, 4, At<RGBA16*>(5), At<RECT*>(6),
                                    At<const RGBA16*>(7), At<const RECT*>(8), true,
                                    At<uint32_t*>(10), At<uint32_t*>(11), At<uint32_t*>(12),
                                    At<uint32_t*>(13), At<uint32_t*>(14), At<char*>(15)));
    EXPECT_EQ(std::exchange(process.heard[8], 9), 1U);
    EXPECT_TRUE(heard(15));
    ImagePluginAdjustScale("gray", &process, 1, 2, At<double*>(3), At<double*>(4));
    EXPECT_TRUE(heard(4));
    EXPECT_TRUE(
        ImagePluginAdjustLocate2("gray", &process, 1, 2, 3, At<double*>(4), At<double*>(5)));
    EXPECT_TRUE(heard(5));
}

TEST(Entry, LetsNoExceptionReachTheHost) {
    RecordingProcess process;
    process.throws = true;
    EXPECT_EQ(Answers("nega", &process), kNothing);
    const auto thrower = [] {
        auto* object = new RecordingProcess;
        object->throws = true;
        return object;
    };
    EXPECT_FALSE(ImagePluginDispose("nega", thrower()));
    EXPECT_TRUE(ImagePluginBatchDispose("nega", thrower()));
}

}  // namespace
}  // namespace imgbasic
