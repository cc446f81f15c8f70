#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/checks.h"
#include "fuzz/host_buffer.h"
#include "plugin/imgbasic/entry.h"
#include "plugin/imgbasic/filter_table.h"
#include "plugin/imgbasic/filters.h"
#include "plugin/imgbasic/message_box.h"

namespace imgbasic {
namespace {

constexpr int32_t kLargestSide = 64;

/// Images of which only a rectangle exists.
constexpr std::pair<int32_t, int32_t> kHugeSizes[] = {
    {65536, 65536}, {INT_MAX, 3}, {3, INT_MAX}, {1 << 20, 6000}, {8193, 8193}};
constexpr PixelRect kNoRect{-77, -77, -77, -77};

class Bytes {
  public:
    explicit Bytes(std::span<const uint8_t> data) : data_(data) {}

    bool Empty() const { return data_.empty(); }

    /// 0 once there are no more.
    uint32_t Byte() {
        if (data_.empty()) {
            return 0;
        }
        const uint8_t byte = data_.front();
        data_ = data_.subspan(1);
        return byte;
    }

    bool Flag() { return (Byte() & 1) != 0; }
    int32_t Below(int32_t count) { return static_cast<int32_t>(Byte()) % count; }

    /// Mostly small, or from the ends of the range.
    int32_t Number() {
        static constexpr int32_t kEnds[] = {INT_MIN, INT_MIN + 1, INT_MAX, INT_MAX - 1, 8192, 1000};
        const auto byte = static_cast<int32_t>(Byte());
        return byte < 250 ? byte % 70 - 3 : kEnds[byte - 250];
    }

  private:
    std::span<const uint8_t> data_;
};

class HostileHost {
  public:
    explicit HostileHost(std::span<const uint8_t> data) : bytes_(data) { running_ = this; }
    ~HostileHost() {
        for (Slot& slot : slots_) {
            Dispose(slot);
        }
    }
    HostileHost(const HostileHost&) = delete;
    HostileHost& operator=(const HostileHost&) = delete;

    std::string Run() {
        const ErrorCapture silence([](HWND, const Text&) {});
        while (!bytes_.Empty() && fault_.empty()) {
            Step();
        }
        return fault_;
    }

  private:
    struct Slot {
        ImageProcess* object = nullptr;
        const char* filter = nullptr;
        bool batch = false;
        bool inDialog = false;
        std::vector<RGBA16> merged;
    };

    void Expect(bool condition, const char* rule) {
        if (!condition && fault_.empty()) {
            fault_ = rule;
        }
    }

    void Step() {
        Slot& slot = slots_[static_cast<size_t>(bytes_.Below(2))];
        try {
            static constexpr void (HostileHost::*kSteps[])(Slot & slot) = {
                &HostileHost::Create,     &HostileHost::Dialog,  &HostileHost::Phase,
                &HostileHost::SetOptions, &HostileHost::Adjust,  &HostileHost::Dispose,
                &HostileHost::Execute,    &HostileHost::Execute, &HostileHost::Execute};
            (this->*kSteps[static_cast<size_t>(bytes_.Below(9))])(slot);
        } catch (...) {
            Expect(false, "an exception left an export");
        }
    }

    const char* AnyFilter() { return kFilterRows[static_cast<size_t>(bytes_.Below(7))].name; }

    void Create(Slot& slot);
    void Dispose(Slot& slot);
    void Dialog(Slot& slot);
    void Phase(Slot& slot);
    void SetOptions(Slot& slot);
    void Adjust(Slot& slot);
    struct Visit;
    void Execute(Slot& slot);
    void ChooseWhole(const Slot& slot, Visit& visit);
    void ChoosePart(const Slot& slot, Visit& visit);
    void ChooseName(Visit& visit);
    void CallAndCheck(Slot& slot, Visit& visit);
    static bool Apply();

    static inline HostileHost* running_ = nullptr;
    static inline int depth_ = 0;

    Bytes bytes_;
    std::array<Slot, 2> slots_;
    int reductions_ = 0;
    std::string fault_;
};

bool IsHuge(const ImageProcess& object) {
    return object.width > kLargestSide || object.height > kLargestSide;
}

size_t PixelsOf(int32_t width, int32_t height) {
    return static_cast<size_t>(std::max(width, 0)) * static_cast<size_t>(std::max(height, 0));
}

void HostileHost::Create(Slot& slot) {
    Dispose(slot);
    if (slot.object != nullptr) {
        return;
    }
    slot.filter = AnyFilter();
    slot.batch = bytes_.Below(8) == 0;
    if (slot.batch) {
        int cancelled = 5;
        slot.object = ImagePluginBatchPrepare(slot.filter, nullptr, &cancelled);
        Expect(cancelled == 5, "nobody cancelled");
        Expect(slot.object == nullptr || ImagePluginIsBatchEnable(slot.filter), "no batch use");
        return;
    }
    std::pair<int32_t, int32_t> size{bytes_.Below(67) - 2, bytes_.Below(67) - 2};
    if (bytes_.Below(4) == 0) {
        size = kHugeSizes[bytes_.Below(5)];
    }
    const Slot& other = slots_[&slot == slots_.data() ? 1 : 0];
    const int32_t layer = bytes_.Number();
    const int32_t subLayer = bytes_.Number();
    const uint32_t color = bytes_.Byte() << 16;
    ImageProcess* reference = bytes_.Flag() ? other.object : nullptr;
    slot.object = ImagePluginPrepare2(slot.filter, size.first, size.second, 0, layer, subLayer,
                                      color, ~color, 0, nullptr, 0, reference);
    Expect(slot.object != nullptr, "a known name gives an object");
}

void HostileHost::Dispose(Slot& slot) {
    if (slot.object == nullptr || slot.inDialog) {
        return;
    }
    for (Slot& other : slots_) {
        if (other.inDialog && other.object->reference == slot.object) {
            return;
        }
        if (other.object != nullptr && other.object->reference == slot.object) {
            other.object->reference = nullptr;
        }
    }
    Expect(slot.batch ? ImagePluginBatchDispose(slot.filter, slot.object)
                      : ImagePluginDispose(slot.filter, slot.object),
           "an object can be ended");
    slot = {};
}

bool HostileHost::Apply() {
    HostileHost& host = *running_;
    const int way = host.bytes_.Below(8);
    if (way == 0) {
        throw way;
    }
    for (int steps = host.bytes_.Below(6); steps > 0 && depth_ < 4; --steps) {
        host.Step();
    }
    return way != 1;
}

void HostileHost::Dialog(Slot& slot) {
    if (slot.object == nullptr || depth_ >= 4) {
        return;
    }
    ++depth_;
    const bool before = std::exchange(slot.inDialog, true);
    const int result =
        ImagePluginDialog(slot.filter, slot.object, bytes_.Below(5) == 0 ? nullptr : Apply);
    slot.inDialog = before;
    --depth_;
    Expect(result >= -1 && result <= 1, "a dialog answers 1, -1 or 0");
}

void HostileHost::Phase(Slot& slot) {
    if (slot.object == nullptr) {
        return;
    }
    slot.merged.clear();
    if (!IsHuge(*slot.object) && bytes_.Below(8) != 0) {
        slot.merged.resize(PixelsOf(slot.object->width, slot.object->height),
                           std::bit_cast<RGBA16>(uint64_t{bytes_.Byte()} * 0x0101'0101'0101'0101));
    }
    uint32_t outs[] = {7, 7, 7};
    const bool tell = bytes_.Flag();
    const int phase = bytes_.Below(3);
    const int result = ImagePluginPhase2(
        slot.filter, slot.object, phase, tell ? &outs[0] : nullptr, tell ? &outs[1] : nullptr,
        slot.merged.empty() ? nullptr : &slot.merged[0].r, 0, 0, tell ? &outs[2] : nullptr);
    Expect(result >= -2 && result <= 1, "a phase answers 1, -1, 0 or -2");
    Expect(result == 1 || (outs[0] == 7 && outs[1] == 7 && outs[2] == 7),
           "a phase that does not go on tells nothing");
    if (slot.merged.empty()) {
        // A phase that was refused keeps the image that it had, which is gone.
        slot.object->mergedImage = nullptr;
    }
}

void HostileHost::SetOptions(Slot& slot) {
    if (slot.object == nullptr) {
        return;
    }
    for (const FilterOption& option : FindFilter(slot.filter)->options) {
        const int32_t nearby = std::min(option.most - option.least + 3, 256);
        option.set(*slot.object,
                   bytes_.Flag() ? bytes_.Number() : option.least - 1 + bytes_.Below(nearby));
    }
    if (auto* scaling = dynamic_cast<ScalingImageProcess*>(slot.object)) {
        scaling->skipDialog = bytes_.Flag();
    }
}

void HostileHost::Adjust(Slot& slot) {
    double x = bytes_.Number();
    double y = bytes_.Number();
    const char* name = slot.object != nullptr ? slot.filter : AnyFilter();
    double* const out = bytes_.Flag() ? &y : nullptr;
    ImagePluginAdjustScale(name, slot.object, 0, 0, &x, out);
    const int32_t index = bytes_.Number();
    const int32_t layer = bytes_.Number();
    ImagePluginAdjustLocate2(name, slot.object, index, layer, bytes_.Number(), &x, out);
}

/// What the host hands to one visit, and what it was before.
struct HostileHost::Visit {
    PixelRect in{};
    RGBA16* src = nullptr;
    RGBA16* dst = nullptr;
    int32_t dstWidth = 0;
    std::vector<RGBA16> dstBefore;  ///< as far as the whole image exists
    std::array<uint32_t, 5> outs{7, 7, 7, 7, 7};
    std::array<char, kLayerNameSize> name{};
};

HostBuffer& SourceBuffer() {
    static HostBuffer buffer;
    return buffer;
}

HostBuffer& ResultBuffer() {
    static HostBuffer buffer;
    return buffer;
}

void HostileHost::ChooseWhole(const Slot& slot, Visit& visit) {
    const ImageProcess& object = *slot.object;
    const auto* scaling = dynamic_cast<const ScalingImageProcess*>(&object);
    const int32_t height = scaling != nullptr ? scaling->ResultHeight() : object.height;
    visit.dstWidth = scaling != nullptr ? scaling->ResultWidth() : object.width;
    const bool atEnd = bytes_.Flag();
    visit.src = SourceBuffer().Image(PixelsOf(object.width, object.height), atEnd, bytes_.Byte());
    if (scaling == nullptr && bytes_.Below(4) == 0) {
        visit.dst = visit.src;
    } else if (visit.dstWidth <= kLargestSide && height <= kLargestSide) {
        visit.dst = ResultBuffer().Image(PixelsOf(visit.dstWidth, height), bytes_.Flag(), 1);
    }
    if (visit.dst != nullptr) {
        visit.dstBefore.assign(visit.dst, visit.dst + PixelsOf(visit.dstWidth, height));
    }
}

/// A few pixels somewhere in the image, at its end if the numbers say so.
void HostileHost::ChoosePart(const Slot& slot, Visit& visit) {
    const ImageProcess& object = *slot.object;
    const int32_t width = std::min(bytes_.Below(9) + 1, object.width);
    const int32_t height = std::min(bytes_.Below(5) + 1, object.height);
    const int32_t left = std::clamp(visit.in.left, 0, object.width - width);
    const int32_t top = std::clamp(visit.in.top, 0, object.height - height);
    visit.in = {left, top, left + width, top + height};
    visit.src = SourceBuffer().Part(object.width, visit.in);
    visit.dst = bytes_.Flag() ? visit.src : ResultBuffer().Part(object.width, visit.in);
}

void HostileHost::ChooseName(Visit& visit) {
    static constexpr char kTags[] = "RGBA";
    visit.name.fill(static_cast<char>(bytes_.Byte()));
    std::memcpy(visit.name.data(), "[?]", 3);
    visit.name[1] = kTags[bytes_.Below(4)];
    // Without an end, now and then.
    if (bytes_.Below(4) != 0) {
        visit.name[static_cast<size_t>(bytes_.Below(kLayerNameSize))] = '\0';
    }
}

void HostileHost::Execute(Slot& slot) {
    // Colour reduction takes a thousand times as long as any other visit.
    constexpr int kReductions = 3;
    const std::string_view filter = slot.object != nullptr ? slot.filter : "";
    reductions_ += filter == "col_reduce" ? 1 : 0;
    if (filter.empty() || (filter == "col_reduce" && reductions_ > kReductions)) {
        return;
    }
    Visit visit;
    visit.in = {bytes_.Number(), bytes_.Number(), bytes_.Number(), bytes_.Number()};
    if (!IsHuge(*slot.object)) {
        ChooseWhole(slot, visit);
    } else if (filter != "scaling" && filter != "chan_merge") {  // they read all of the image
        ChoosePart(slot, visit);
    }
    if (bytes_.Below(16) == 0) {
        visit.src = nullptr;
    }
    ChooseName(visit);
    visit.outs[4] = static_cast<uint32_t>(bytes_.Number());
    CallAndCheck(slot, visit);
    SourceBuffer().HidePart();
    ResultBuffer().HidePart();
}

void HostileHost::CallAndCheck(Slot& slot, Visit& visit) {
    const Visit before = visit;
    const RECT inRect = std::bit_cast<RECT>(visit.in);
    RECT out = std::bit_cast<RECT>(kNoRect);
    const bool near = bytes_.Below(4) != 0;
    const int32_t layer = near ? slot.object->curLayer : bytes_.Number();
    const int32_t subLayer = near ? slot.object->curSubLayer : bytes_.Number();
    const int32_t phase = bytes_.Below(3);
    const bool tell = bytes_.Below(8) != 0;
    const bool hasArea = bytes_.Below(8) != 0;
    const bool skipPixels = bytes_.Below(8) == 1;
    const auto pointer = [&](size_t i) { return tell ? &visit.outs[i] : nullptr; };
    const bool result = ImagePluginExecute4(
        slot.filter, slot.object, phase, layer, subLayer, 0, visit.dst, tell ? &out : nullptr,
        visit.src, hasArea ? &inRect : nullptr, skipPixels, pointer(0), pointer(1), pointer(2),
        pointer(4), pointer(3), tell ? visit.name.data() : nullptr);
    const auto written = std::bit_cast<PixelRect>(out);
    if (!result) {
        Expect(visit.outs == before.outs && visit.name == before.name, "a refusal tells nothing");
        // It reports the area before it begins.
        Expect(written == kNoRect || slot.filter == std::string_view("col_reduce"),
               "a refusal has no area");
    }
    for (size_t i = 0; i < visit.dstBefore.size() && result && tell; ++i) {
        const auto x = static_cast<int32_t>(i) % visit.dstWidth;
        const auto y = static_cast<int32_t>(i) / visit.dstWidth;
        const bool covered =
            x >= written.left && x < written.right && y >= written.top && y < written.bottom;
        Expect(covered || visit.dst[i] == visit.dstBefore[i], "nothing changes outside outRect");
    }
}

}  // namespace

std::string CheckExports(std::span<const uint8_t> data) {
    HostileHost host(data);
    return host.Run();
}

}  // namespace imgbasic
