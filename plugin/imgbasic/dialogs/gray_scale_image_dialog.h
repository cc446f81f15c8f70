#pragma once

#include "plugin/imgbasic/dialogs/common_image_dialog.h"

namespace imgbasic {

/// The options dialog of "gray".
class GrayScaleImageDialog final : public CommonImageDialog {
  public:
    explicit GrayScaleImageDialog(GrayScaleImageProcess& process);
    KVWin32DialogItemArray Items() const override;

  private:
    GrayScaleImageProcess& gray_;
};

}  // namespace imgbasic
