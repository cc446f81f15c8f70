#pragma once

#include "plugin/imgbasic/dialogs/common_image_dialog.h"

namespace imgbasic {

/// The options dialog of "col_reduce".
class ReduceColorImageDialog final : public CommonImageDialog {
  public:
    explicit ReduceColorImageDialog(ReduceColorImageProcess& process);
    KVWin32DialogItemArray Items() const override;

  private:
    ReduceColorImageProcess& reduce_;
};

}  // namespace imgbasic
