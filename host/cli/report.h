#pragma once

#include <filesystem>
#include <string>

namespace imgbasic::host {

/// What the command line tells people: written files on standard output, everything else on
/// standard error, and a progress bar there when it is a terminal. Every line goes out whole, so
/// that worker processes do not mix theirs.
class Report {
  public:
    /// `quiet` leaves only the errors.
    explicit Report(bool quiet);

    /// "imgbasic: TEXT"; the text names the file, the fault and the way out.
    void Error(const std::string& text) const;
    /// A remark on a success.
    void Note(const std::string& text) const;
    void Written(const std::filesystem::path& path) const;
    /// Draws the bar; takes it away when `done` reaches `total`.
    void Progress(size_t done, size_t total) const;

    /// What became of several files, and how long they took.
    void Summary(size_t files, size_t failed, double seconds) const;

  private:
    void Say(const std::string& text) const;

    bool quiet_;
    bool hasTerminal_;
};

}  // namespace imgbasic::host
