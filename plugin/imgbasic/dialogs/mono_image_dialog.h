#pragma once

#include "plugin/imgbasic/dialogs/common_image_dialog.h"

namespace imgbasic {

/// The options dialog of "mono".
class MonoImageDialog final : public CommonImageDialog {
  public:
    explicit MonoImageDialog(MonoImageProcess& process);
    KVWin32DialogItemArray Items() const override;

  private:
    MonoImageProcess& mono_;
};

}  // namespace imgbasic
