#pragma once

#include "plugin/imgbasic/target_process.h"

namespace imgbasic {

/// "nega": the complement of every colour channel; alpha stays, and is not looked at.
class NegaImageProcess final : public TargetImageProcess {
  public:
    bool Execute(const ExecuteArgs& args) override;

  protected:
    const FilterRow& Row() const override;
};

inline constexpr FilterOption kNegaOptions[] = {TargetOption()};

// There is nothing to ask for in a batch, which has no layers to choose from, and nothing that a
// repeated run could take over.
template <>
inline constexpr FilterRow kRow<NegaImageProcess>{
    .name = "nega",
    .displayName = {"階調の反転", "\x8AK\x92\xB2\x82\xCC\x94\xBD\x93]"},
    .batch = BatchUse::Unasked,
    .dialog = IDD_NEGA,
    .options = kNegaOptions,
};

}  // namespace imgbasic
