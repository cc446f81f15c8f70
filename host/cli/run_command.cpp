#include <chrono>
#include <cstdio>

#include "host/cli/file_jobs.h"
#include "host/cli/filter_command.h"
#include "host/cli/module_message.h"
#include "host/cli/opaque_defaults.h"
#include "host/cli/picture_change.h"
#include "host/cli/report.h"
#include "host/cli/settings_command.h"
#include "host/cli/strip_run.h"
#include "host/memory_limit.h"
#include "host/openraster.h"

namespace imgbasic::host {
namespace {

/// A fault of one file; the message goes behind the file's name.
class JobError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

LayerPosition CurrentPosition(const FilterCommand& command, const Document& document) {
    const LayerPosition position{command.layer.value_or(0), command.subLayer.value_or(-1)};
    const auto count = static_cast<int32_t>(document.items.size());
    if (position.item >= count) {
        throw JobError("has no layer " + std::to_string(position.item) + ", only " +
                       std::to_string(count) + "; `imgbasic info` lists them");
    }
    const std::string layer = "layer " + std::to_string(position.item);
    const auto* folder = std::get_if<Folder>(&document.items[static_cast<size_t>(position.item)]);
    if (position.layer >= 0 && folder == nullptr) {
        throw JobError(layer + " is no folder; leave out --sub-layer");
    }
    if (position.layer >= 0 && position.layer >= static_cast<int32_t>(CountLayers(folder->items))) {
        throw JobError(layer + " has no layer " + std::to_string(position.layer) +
                       " inside; `imgbasic info` lists them");
    }
    if (command.target == CurrentLayer && folder != nullptr && position.layer < 0) {
        throw JobError(layer + " is a folder; choose one of its layers with --sub-layer");
    }
    return position;
}

/// Refuses a run whose result could not keep all that it was not asked to change, or tells what.
void CheckLosses(const FilterCommand& command, const FileJob& job, const Document& document,
                 bool resizes, const Report& report) {
    const std::vector<std::string> losses = LossesOf(document, resizes && KeepsLayers(job.output));
    for (const std::string& loss : losses) {
        if (!command.acceptLoss) {
            throw JobError(loss + "; --accept-loss goes on all the same");
        }
        report.Note(job.input.string() + ": " + loss);
    }
}

RunRequest RequestFor(const FilterCommand& command, const FileJob& job, const Document& document,
                      ImageProcess* reference) {
    RunRequest request{.filter = command.filter,
                       .current = CurrentPosition(command, document),
                       .drawColor = command.drawColor,
                       .backColor = command.backColor,
                       .reference = reference,
                       .rememberOptions = command.remember};
    if (reference != nullptr) {
        request.options = ReadOptions(command.filter, *reference);
    }
    const std::vector<OptionValue> defaults = OpaqueDefaults(command.filter, document);
    request.options.insert(request.options.end(), defaults.begin(), defaults.end());
    request.options.insert(request.options.end(), command.options.begin(), command.options.end());
    if (!command.size.IsEmpty()) {
        const PixelSize size = ScaledSize(command.size, {document.width, document.height});
        RequireMemory(job.input.string(), size.width, size.height, CountLayers(document.items) + 1);
        request.options.push_back(Option(command.filter, "newWidth", size.width));
        request.options.push_back(Option(command.filter, "newHeight", size.height));
    }
    return request;
}

class Stopwatch {
  public:
    double Milliseconds() const {
        return std::chrono::duration<double, std::milli>(Clock::now() - start_).count();
    }

  private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point start_ = Clock::now();
};

std::string SizeText(const Document& document) {
    return std::to_string(document.width) + " x " + std::to_string(document.height);
}

/// What --verbose tells about a run.
std::string Describe(const FilterCommand& command, const FileJob& job,
                     const std::string& sizeBefore, const Document& result, double milliseconds) {
    char time[32];
    std::snprintf(time, sizeof time, "%.1f ms", milliseconds);
    std::string text = job.input.string() + ": " + command.filter + ", " + sizeBefore;
    if (sizeBefore != SizeText(result)) {
        text += " to " + SizeText(result);
    }
    return text.append(" pixels, ").append(time);
}

void Process(const Module& module, const FilterCommand& command, ImageProcess* reference,
             const FileJob& job, const Report& report) {
    std::error_code ignored;
    if (!command.save.overwrite && std::filesystem::exists(job.output, ignored)) {
        throw FileError(job.output.string() + ": exists already; --force overwrites it");
    }
    std::vector<std::string> notes;
    Document document = LoadDocument(job.input, &notes);
    for (const std::string& note : notes) {
        report.Note(note);
    }
    CheckLosses(command, job, document, module.isSizeChange(command.filter.c_str()), report);
    const RunRequest request = RequestFor(command, job, document, reference);
    const bool compares = command.verbose && command.filter == "col_reduce";
    const Document source = compares ? document : Document{};
    const std::string sizeBefore = SizeText(document);
    const Stopwatch stopwatch;
    RunOutcome outcome = CanRunInStrips(document, request)
                             ? RunInStrips(module, std::move(document), request)
                             : RunFilterInUsersLanguage(module, std::move(document), request);
    const double milliseconds = stopwatch.Milliseconds();
    if (outcome.status == RunStatus::Failed || outcome.status == RunStatus::Cancelled) {
        throw JobError((outcome.status == RunStatus::Failed ? outcome.fault : "cancelled") +
                       "; nothing was written");
    }
    std::string told;
    if (command.verbose) {
        told = Describe(command, job, sizeBefore, outcome.document, milliseconds);
        told += compares ? ", " + DescribeReduction(source, outcome.document) : "";
    }
    if (command.filter == "chan_decomp" && !KeepsLayers(job.output)) {
        report.Note(job.output.string() +
                    ": keeps no layers, so it shows the channels joined again; name a .ora file");
    }
    for (const std::string& note :
         SaveDocument(std::move(outcome.document), job.output, command.save)) {
        report.Note(note);
    }
    if (command.verbose) {
        report.Note(told);
    }
    report.Written(job.output);
    if (command.remember && !AreStored(command.filter, request.options)) {
        throw JobError(
            "was filtered, but its options could not be stored; is your configuration folder "
            "writable?");
    }
}

/// Does one job and reports its faults.
bool TryJob(const Module& module, const FilterCommand& command, ImageProcess* reference,
            const FileJob& job, const Report& report) {
    try {
        Process(module, command, reference, job, report);
        return true;
    } catch (const FileError& fault) {
        report.Error(fault.what());
    } catch (const std::bad_alloc&) {
        report.Error(job.input.string() +
                     ": there is not enough memory; make the image smaller or use fewer --jobs");
    } catch (const std::exception& fault) {
        report.Error(job.input.string() + ": " + fault.what());
    }
    return false;
}

/// The command with the options that follow from its flags for the layer and the size.
FilterCommand Completed(FilterCommand command) {
    if (command.layer && !command.target && FindOption(command.filter, "TargetType") != nullptr) {
        command.target = CurrentLayer;
    }
    const auto add = [&](const char* field, int32_t value) {
        command.options.push_back(Option(command.filter, field, value));
    };
    const SizeRequest& size = command.size;
    if (command.target) {
        add("TargetType", *command.target);
    }
    if (size.IsEmpty()) {
        return command;
    }
    // The module's percentages are whole numbers; others reach it as the size that they give.
    const auto width = size.ratio ? size.ratio->WholePercent() : std::nullopt;
    const auto height = size.ratioHeight ? size.ratioHeight->WholePercent() : width;
    add("RatioSize", width && height);
    if (width && height) {
        add("RatioWidth", *width);
        add("RatioHeight", *height);
    }
    return command;
}

}  // namespace

bool RunFilterCommand(const Module& module, const FilterCommand& given) {
    if (given.filter == "scaling" && given.size.IsEmpty()) {
        throw UsageError("scaling needs a size: --ratio, --fit, --width or --height");
    }
    const FilterCommand command = Completed(given);
    const Report report(command.quiet);
    const std::vector<FileJob> jobs = PlanJobs(command.inputs, command.output);
    // A batch's object never asks the host for a run, so it has no chance to take new options in
    // before it stores them.
    FilterObject batch;
    if (jobs.size() > 1 && !command.remember && module.isBatchEnable(command.filter.c_str())) {
        bool cancelled = false;
        batch = PrepareBatch(module, command.filter, nullptr, cancelled);
        if (cancelled) {
            throw UsageError("cancelled");
        }
    }
    return DoJobs(jobs, command.jobs, report, [&](const FileJob& job) {
        return TryJob(module, command, batch.get(), job, report);
    });
}

}  // namespace imgbasic::host
