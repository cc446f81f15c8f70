#pragma once

#include <cstdint>
#include <span>

#include "plugin/imgbasic/process.h"
#include "plugin/imgbasic/resource.h"
#include "plugin/imgbasic/texts.h"

namespace imgbasic {

enum class OptionKind {
    Number,  ///< `least` to `most`
    Choice,  ///< the index in `choices`
    Switch   ///< 0 off, 1 on
};

struct NumberRange {
    int32_t least;
    int32_t most;
    int32_t initial;
};

/// The controls of an option in its filter's dialog (resource.h); 0 for none.
struct OptionControls {
    int id = 0;    ///< what shows the value: slider or up-down, list, box, first radio button
    int edit = 0;  ///< of a number: the field beside it
    int spin = 0;  ///< of a slider: the field's up-down
};

/// One public field of a filter's objects that a user may set, with all that is known about it.
/// The settings, the dialogs and the hosts work from the table of these that ends each filter's
/// header.
struct FilterOption {
    const char* name;  ///< the field's, which is also that of its stored value
    OptionKind kind;
    int32_t least;
    int32_t most;
    int32_t initial;  ///< of a new object, and what a bad stored number is taken for
    std::span<const Text> choices;
    OptionControls controls;
    int32_t (*get)(const ImageProcess& object);
    void (*set)(ImageProcess& object, int32_t value);
    bool isStored;

    constexpr bool Allows(int32_t value) const { return value >= least && value <= most; }

    /// A value that the option never has.
    constexpr int32_t NoValue() const { return least - 1; }

    constexpr FilterOption NotStored() const {
        FilterOption option = *this;
        option.isStored = false;
        return option;
    }
};

/// The field behind a pointer to a member, in an object that is known to have it.
template <auto Member>
struct OptionField;

template <typename Process, typename Value, Value Process::*Member>
struct OptionField<Member> {
    static int32_t Get(const ImageProcess& object) {
        return static_cast<int32_t>(static_cast<const Process&>(object).*Member);
    }
    static void Set(ImageProcess& object, int32_t value) {
        static_cast<Process&>(object).*Member = static_cast<Value>(value);
    }
};

template <auto Member>
constexpr FilterOption NumberOption(const char* name, const NumberRange& range,
                                    const OptionControls& controls) {
    return {name,
            OptionKind::Number,
            range.least,
            range.most,
            range.initial,
            {},
            controls,
            OptionField<Member>::Get,
            OptionField<Member>::Set,
            true};
}

template <auto Member>
constexpr FilterOption ChoiceOption(const char* name, std::span<const Text> choices,
                                    int32_t initial, int control) {
    return {name,
            OptionKind::Choice,
            0,
            static_cast<int32_t>(choices.size()) - 1,
            initial,
            choices,
            {.id = control},
            OptionField<Member>::Get,
            OptionField<Member>::Set,
            true};
}

template <auto Member>
constexpr FilterOption SwitchOption(const char* name, bool initial, int control) {
    return {name,
            OptionKind::Switch,
            0,
            1,
            initial ? 1 : 0,
            {},
            {.id = control},
            OptionField<Member>::Get,
            OptionField<Member>::Set,
            true};
}

/// In the order of TargetKind.
inline constexpr Text kTargetTypes[] = {
    {"結合した画像", "\x8C\x8B\x8D\x87\x82\xB5\x82\xBD\x89\xE6\x91\x9C"},
    {"全レイヤー", "\x91S\x83\x8C\x83\x43\x83\x84\x81["},
    {"カレントレイヤー", "\x83J\x83\x8C\x83\x93\x83g\x83\x8C\x83\x43\x83\x84\x81["},
};

constexpr FilterOption TargetOption() {
    return ChoiceOption<&ImageProcess::TargetType>("TargetType", kTargetTypes, MergedImage,
                                                   IDC_TARGET_TYPE);
}

}  // namespace imgbasic
