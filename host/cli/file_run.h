#pragma once

#include <string>
#include <vector>

#include "host/cli/file_jobs.h"
#include "host/cli/report.h"
#include "host/cli/run_command.h"
#include "host/driver.h"

namespace imgbasic::host {

/// A command that is ready to be run over every file.
struct PlannedRun {
    const Module& module;
    RunCommand command;                 ///< with complete steps
    std::vector<FilterObject> batches;  ///< of each step; null where a file is run by itself
};

/// One file on its way through the steps.
class FileRun {
  public:
    FileRun(const PlannedRun& plan, const FileJob& job, const Report& report)
        : plan_(plan), files_(plan.command.files), job_(job), report_(report) {}

    /// Reads the file, runs the steps and writes the result. Reports its faults; whether there was
    /// none.
    bool Run();

  private:
    void Process();
    void CheckOutput() const;
    bool CanRunWhileReading() const;
    void RunWhileReading();
    Document Load();
    void SettleFormat(const Document& document);
    Document RunStep(size_t index, Document document);
    void CheckLosses(const FilterCommand& step, const Document& document);
    void RememberStep(const FilterCommand& step, const std::string& sizes, double milliseconds,
                      const std::string& change);
    template <typename Image>
    void Save(Image image);
    void TellNotes(const std::vector<std::string>& notes) const;

    const PlannedRun& plan_;
    const FileOptions& files_;
    const FileJob& job_;
    const Report& report_;
    std::string extension_ = job_.extension;  ///< of the output's format
    std::vector<std::string> losses_{};       ///< that were told
    std::vector<std::string> told_{};         ///< what --verbose tells about the steps
};

}  // namespace imgbasic::host
