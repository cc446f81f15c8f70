#pragma once

#include <functional>
#include <string>

#include "host/driver.h"
#include "host/viewer/edited_picture.h"

namespace imgbasic::viewer {

/// Runs the module's filters over a picture, and knows the last one.
class FilterRuns {
  public:
    using Preview = std::function<void(const host::Document& document)>;

    explicit FilterRuns(const host::Module& module) : module_(module) {}

    uint32_t drawColor = 0x000000;  ///< 0x00RRGGBB
    uint32_t backColor = 0xFFFFFF;  ///< 0x00RRGGBB

    /// Lets the module ask for the options over `owner`, tells `preview` of every preview, and puts
    /// what was confirmed into the picture. The outcome's document is the picture's then. What the
    /// result could not keep, the user is asked about before.
    host::RunOutcome Run(const std::string& filter, EditedPicture& picture, HWND owner,
                         const Preview& preview);

    /// Does what the last run did, without asking; there must have been one.
    host::RunOutcome Repeat(EditedPicture& picture, HWND owner);

    /// Empty before the first.
    const std::string& LastFilter() const { return lastFilter_; }
    double LastMilliseconds() const { return lastMilliseconds_; }

  private:
    bool MayLose(const host::RunRequest& request, EditedPicture& picture) const;
    host::RunOutcome Finish(host::RunRequest request, EditedPicture& picture);

    const host::Module& module_;
    std::string lastFilter_;
    host::FilterObject lastObject_;
    double lastMilliseconds_ = 0;
};

}  // namespace imgbasic::viewer
