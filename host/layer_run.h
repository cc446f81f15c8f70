#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/document.h"
#include "host/driver.h"
#include "host/module.h"

namespace imgbasic::host {

/// A run that the filter, or what it answered, made impossible; the message is for people.
class RunError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// One walk of a filter object through all its phases over a document of its own.
class LayerRun {
  public:
    LayerRun(const Module& module, const std::string& filter, ImageProcess& object,
             Document document);

    /// False when the filter found nothing to do. Throws RunError and std::bad_alloc.
    bool Run();

    /// The document as the run left it.
    Document TakeDocument() { return std::move(document_); }

  private:
    /// A layer on its visit. For a folder it stands in, with the folder's composed picture.
    struct Visited {
        Layer layer{};
        bool isFolder = false;
        bool isPlain = false;        ///< the filter made it a plain layer
        bool isRemoved = false;      ///< the filter used it up
        std::vector<Layer> above{};  ///< new layers, topmost first
    };

    /// What the filter answered for one layer, made safe.
    struct Answer {
        uint32_t code = 0;
        uint32_t kind = 0;
        PixelRect area{};  ///< written, inside the image
        LayerAttributes attributes{};
    };

    bool BeginPhase(int phase);
    void VisitItems();
    void VisitFolder(Folder& folder, LayerPosition& next);
    void Visit(Visited& visited, LayerPosition position);
    bool Show(Visited& visited, LayerPosition position);
    Answer Ask(const Visited& visited, LayerPosition position, std::vector<RGBA16>& produced) const;
    void Store(Layer& layer, std::vector<RGBA16> produced, PixelRect written, bool fresh) const;
    Visited StandInFor(Folder& folder) const;

    const Module& module_;
    const std::string& filter_;
    ImageProcess& object_;
    Document document_;  ///< from the beginning of a phase on with that phase's new size
    int phase_ = 0;
    int32_t sourceWidth_ = 0;  ///< size of the layers that this phase has not visited yet
    int32_t sourceHeight_ = 0;
    bool showOnly_ = false;  ///< this phase shows the layers to the filter and changes nothing
    std::vector<RGBA16> merged_;
};

}  // namespace imgbasic::host
