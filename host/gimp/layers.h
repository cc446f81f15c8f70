#pragma once

#include <libgimp/gimp.h>

#include <string>
#include <vector>

namespace imgbasic::host {

std::string NameOf(gint32 item);

/// The image's own items, 0 on top: layers and groups.
std::vector<gint32> TopItems(gint32 image);

/// What a group holds, 0 on top.
std::vector<gint32> Children(gint32 group);

/// The items beside one at its own level, itself among them, 0 on top.
std::vector<gint32> Siblings(gint32 item);

/// The layers that hold pixels of their own, whatever group they are in, topmost first.
std::vector<gint32> PixelLayers(gint32 image);

/// The layer that is all that the image shows, so that nothing has to be composed; -1 for none.
gint32 WholePictureLayer(gint32 image);

/// The group that an item is in; 0 stands for the image itself, as it does for insertions.
gint32 ParentOf(gint32 item);

/// How a layer or group is composed and shown, its mask included, becomes that of another one. For
/// a mask both must cover the same part of the image.
void TakeOverAttributes(gint32 from, gint32 to);

/// Everything that changes the image while this exists is one step for Undo.
class UndoStep {
  public:
    explicit UndoStep(gint32 image) : image_(image) { gimp_image_undo_group_start(image_); }
    ~UndoStep() { gimp_image_undo_group_end(image_); }
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;

  private:
    gint32 image_;
};

/// Nothing that changes the image while this exists can be undone, or counts as unsaved work.
class WithoutUndo {
  public:
    explicit WithoutUndo(gint32 image)
        : image_(image), wasDirty_(gimp_image_is_dirty(image) != FALSE) {
        gimp_image_undo_freeze(image_);
    }
    ~WithoutUndo() {
        gimp_image_undo_thaw(image_);
        if (!wasDirty_) {
            gimp_image_clean_all(image_);
        }
    }
    WithoutUndo(const WithoutUndo&) = delete;
    WithoutUndo& operator=(const WithoutUndo&) = delete;

  private:
    gint32 image_;
    bool wasDirty_;
};

}  // namespace imgbasic::host
