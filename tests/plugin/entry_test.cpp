#include "plugin/imgbasic/entry.h"

#include <gtest/gtest.h>

#include <cctype>
#include <memory>
#include <string>
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

struct ThrowingProcess final : ImageProcess {
    int BatchPrepare() override { throw 1; }
    bool BatchDispose() override { throw 1; }
    int Dialog(ApplyCallback) override { throw 1; }
    int Phase(int, uint32_t*, uint32_t*, const RGBA16*, uint64_t, uint64_t, uint32_t*) override {
        throw 1;
    }
    bool Execute(const ExecuteArgs&) override { throw 1; }
    void AdjustScale(int, int, double*, double*) override { throw 1; }
    bool AdjustLocate(int, int, int, double*, double*) override { throw 1; }
    bool Dispose() override { throw 1; }
};

TEST(Entry, LetsNoExceptionReachTheHost) {
    ThrowingProcess process;
    EXPECT_EQ(Answers("nega", &process), kNothing);
    EXPECT_FALSE(ImagePluginDispose("nega", new ThrowingProcess));
    EXPECT_TRUE(ImagePluginBatchDispose("nega", new ThrowingProcess));
}

}  // namespace
}  // namespace imgbasic
