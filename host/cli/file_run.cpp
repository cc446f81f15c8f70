#include "host/cli/file_run.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <new>

#include "host/cli/module_message.h"
#include "host/cli/picture_change.h"
#include "host/cli/standard_streams.h"
#include "host/cli/step_request.h"
#include "host/cli/strip_run.h"
#include "host/file_metadata.h"
#include "host/layer_run.h"
#include "host/memory_limit.h"
#include "host/openraster.h"
#include "host/raster_strips.h"
#include "host/sample_depth.h"

namespace imgbasic::host {
namespace {

template <typename Image>
std::string SizeText(const Image& image) {
    return std::to_string(image.width) + " x " + std::to_string(image.height);
}

std::string OutputName(const std::filesystem::path& path) {
    return path == kStandardStream ? "standard output" : path.string();
}

/// Of a file's samples that were the lower one of two, forgets those that are no longer one of two,
/// as a file between two steps would.
void ForgetLostSamples(Document& document) {
    const Layer* const picture = WholePicture(document);
    if (document.metadata == nullptr || document.metadata->lowerSamples.empty()) {
        return;
    }
    auto metadata = std::make_shared<FileMetadata>(*document.metadata);
    std::vector<bool>& lower = metadata->lowerSamples;
    if (picture == nullptr || lower.size() != picture->pixels.size() * 4) {
        lower.clear();
    }
    for (size_t index = 0; index < lower.size(); ++index) {
        const RGBA16& pixel = picture->pixels[index / 4];
        const uint16_t channels[] = {pixel.r, pixel.g, pixel.b, pixel.a};
        lower[index] = lower[index] && HasLowerTwin(ToDepth16(channels[index % 4]));
    }
    document.metadata = std::move(metadata);
}

}  // namespace

bool FileRun::Run() {
    const std::string name = InputName(job_.input);
    try {
        Process();
        return true;
    } catch (const FileError& fault) {
        report_.Error(fault.what());
    } catch (const std::bad_alloc&) {
        report_.Error(name +
                      ": there is not enough memory; make the image smaller or use fewer --jobs");
    } catch (const std::exception& fault) {
        report_.Error(name + ": " + fault.what());
    }
    return false;
}

void FileRun::Process() {
    if (job_.output != kStandardStream) {
        CheckOutput();
    }
    if (CanRunWhileReading()) {
        RunWhileReading();
        return;
    }
    Document document = Load();
    SettleFormat(document);
    for (size_t index = 0; index < plan_.command.steps.size(); ++index) {
        document = RunStep(index, std::move(document));
        ForgetLostSamples(document);
    }
    Save(std::move(document));
}

/// Whether the pixels can go from the input to the output strip by strip, as 8 bits a channel and
/// opaque all the way, without a document of the whole.
bool FileRun::CanRunWhileReading() const {
    const auto& steps = plan_.command.steps;
    const bool isPossible = !extension_.empty() && !KeepsLayers(extension_) &&
                            files_.save.bitDepth != 16 &&
                            std::ranges::all_of(steps, [](const FilterCommand& step) {
                                return WorksByPixel(step.filter) && !step.layer && !step.subLayer;
                            });
    // What there is to note is noted when the pixels are read.
    std::vector<std::string> notes;
    const auto header = isPossible ? ReadHeader(job_.input, notes) : std::nullopt;
    return header && header->bitDepth == 8 && header->isOpaque;
}

void FileRun::RunWhileReading() {
    const auto& steps = plan_.command.steps;
    const std::string name = InputName(job_.input);
    Document outline;
    outline.items.emplace_back(Layer{});
    std::vector<RunRequest> requests;
    for (size_t index = 0; index < steps.size(); ++index) {
        requests.push_back(RequestFor(steps[index], outline, plan_.batches[index].get()));
    }
    std::vector<double> milliseconds(steps.size());
    const auto change = [&](std::vector<RGBA16>& rows, int32_t width) {
        for (size_t index = 0; index < steps.size(); ++index) {
            try {
                milliseconds[index] += RunOnRows(plan_.module, rows, width, requests[index]);
            } catch (const RunError& fault) {
                throw JobError(StepName(steps, index) + fault.what() + "; nothing was written");
            }
        }
        if (!IsOpaque(rows)) {
            throw JobError("the filters made an opaque picture translucent; nothing was written");
        }
    };
    std::vector<std::string> notes;
    Picture picture =
        ReadRasterInStrips({.name = name, .path = job_.input.string()}, change, notes);
    TellNotes(notes);
    for (size_t index = 0; index < steps.size(); ++index) {
        RememberStep(steps[index], SizeText(picture), milliseconds[index], "");
    }
    Save(std::move(picture));
}

/// Finds what forbids a file before there is work in it.
void FileRun::CheckOutput() const {
    std::error_code ignored;
    if (!files_.save.overwrite && std::filesystem::exists(job_.output, ignored)) {
        throw FileError(job_.output.string() + ": exists already; --force overwrites it");
    }
    RequireFormat(job_.output);
}

/// The standard output's format is the input's where none was asked for.
void FileRun::SettleFormat(const Document& document) {
    if (extension_.empty()) {
        extension_ = document.extension;
    }
    if (extension_.empty()) {
        throw JobError("is of a format that is not written; choose another one with --format");
    }
}

Document FileRun::Load() {
    std::vector<std::string> notes;
    Document document = LoadDocument(job_.input, &notes);
    TellNotes(notes);
    return document;
}

Document FileRun::RunStep(size_t index, Document document) try {
    const FilterCommand& step = plan_.command.steps[index];
    CheckLosses(step, document);
    const RunRequest request = RequestFor(step, document, plan_.batches[index].get());
    const bool inStrips = CanRunInStrips(document, request);
    if (!inStrips) {
        const auto [width, height] = SizeAfter(step, document);
        RequireMemory(InputName(job_.input), width, height,
                      BytesForRun(step.filter, document, width, height));
    }
    const bool compares = files_.verbose && step.filter == "col_reduce";
    const Document source = compares ? document : Document{};
    const std::string sizeBefore = SizeText(document);
    const auto start = std::chrono::steady_clock::now();
    RunOutcome outcome = inStrips
                             ? RunInStrips(plan_.module, std::move(document), request)
                             : RunFilterInUsersLanguage(plan_.module, std::move(document), request);
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    if (outcome.status == RunStatus::Failed || outcome.status == RunStatus::Cancelled) {
        throw JobError((outcome.status == RunStatus::Failed ? outcome.fault : "cancelled") +
                       "; nothing was written");
    }
    const std::string size = SizeText(outcome.document);
    RememberStep(step, sizeBefore + (sizeBefore != size ? " to " + size : ""), time.count(),
                 compares ? ", " + DescribeReduction(source, outcome.document) : "");
    return std::move(outcome.document);
} catch (const FileError&) {
    throw;  // says where it happened
} catch (const std::runtime_error& fault) {
    throw JobError(StepName(plan_.command.steps, index) + fault.what());
}

/// Refuses a step whose result could not keep all that it was not asked to change, or tells what.
void FileRun::CheckLosses(const FilterCommand& step, const Document& document) {
    const bool resizes = plan_.module.isSizeChange(step.filter.c_str()) && KeepsLayers(extension_);
    for (const std::string& loss : LossesOf(document, resizes)) {
        if (!files_.acceptLoss) {
            throw JobError(loss + "; --accept-loss goes on all the same");
        }
        if (std::ranges::find(losses_, loss) == losses_.end()) {
            report_.Note(InputName(job_.input) + ": " + loss);
            losses_.push_back(loss);
        }
    }
}

/// Keeps what --verbose tells about a step.
void FileRun::RememberStep(const FilterCommand& step, const std::string& sizes, double milliseconds,
                           const std::string& change) {
    if (files_.verbose) {
        char time[32];
        std::snprintf(time, sizeof time, "%.1f ms", milliseconds);
        told_.push_back(InputName(job_.input) + ": " + step.filter + ", " + sizes + " pixels, " +
                        time + change);
    }
}

template <typename Image>
void FileRun::Save(Image image) {
    std::vector<std::string> notes;
    if (plan_.command.steps.back().filter == "chan_decomp" && !KeepsLayers(extension_)) {
        report_.Note(OutputName(job_.output) +
                     ": keeps no layers, so it shows the channels joined again; name a .ora file");
    }
    if (job_.output == kStandardStream) {
        WriteStandardOutput(EncodeDocument(std::move(image), extension_, OutputName(job_.output),
                                           files_.save, notes));
    } else {
        notes = SaveDocument(std::move(image), job_.output, files_.save);
    }
    TellNotes(notes);
    TellNotes(told_);
}

void FileRun::TellNotes(const std::vector<std::string>& notes) const {
    for (const std::string& note : notes) {
        report_.Note(note);
    }
}

}  // namespace imgbasic::host
