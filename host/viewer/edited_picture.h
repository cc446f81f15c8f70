#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "host/layer_rows.h"

namespace imgbasic::viewer {

/// Reads the files into one document, several as layers with the first on top, at the upper left
/// of a picture that holds them all. What is shown otherwise than a file means it is told in
/// `notes`. Throws FileError.
host::Document LoadAsLayers(const std::vector<std::filesystem::path>& paths,
                            std::vector<std::string>& notes);

/// The document that is shown, with its past, its file and the layer that is current.
class EditedPicture {
  public:
    EditedPicture();

    bool IsEmpty() const { return state_.document.width == 0; }
    const host::Document& Content() const { return state_.document; }
    const std::filesystem::path& Path() const { return path_; }  ///< empty without a file
    bool HasChanged() const { return state_.revision != savedRevision_; }

    /// A new document, which has no past; several files together have no path.
    void Open(host::Document document, std::filesystem::path path);

    /// The result of a run.
    void Change(host::Document document);
    bool CanUndo() const { return !past_.empty(); }
    bool CanRedo() const { return !future_.empty(); }
    void Undo();
    void Redo();

    /// All layers and folders, topmost first; valid until the document changes.
    std::vector<host::LayerRow> Rows() { return host::RowsOf(state_.document); }
    /// After a row's attributes were changed in place.
    void Touch() { state_.revision = ++lastRevision_; }

    host::LayerPosition current{};
    std::set<std::string> acceptedLosses{};  ///< what the user lets runs lose of the document

    /// Writes the format that the path's extension names, which becomes the document's file.
    /// Returns remarks. Throws FileError.
    std::vector<std::string> Save(const std::filesystem::path& path);

  private:
    struct State {
        host::Document document{};
        int revision = 0;
    };

    void Step(std::vector<State>& from, std::vector<State>& to);
    void KeepCurrent();

    State state_;
    std::vector<State> past_;
    std::vector<State> future_;
    int lastRevision_ = 0;
    int savedRevision_ = 0;
    std::filesystem::path path_;
};

}  // namespace imgbasic::viewer
