#include "host/viewer/batch_run.h"

#include <new>

#include "host/image_file.h"

namespace imgbasic::viewer {
namespace {

std::filesystem::path OutputFor(const std::filesystem::path& input,
                                const std::filesystem::path& folder) {
    const bool hasLayers = input.extension() == ".ora";
    return (folder / input.filename()).replace_extension(hasLayers ? ".ora" : ".png");
}

/// Throws what reading, running or writing throws.
void Process(const host::Module& module, ImageProcess& reference, const BatchOrder& order,
             const std::filesystem::path& input) {
    host::RunOutcome outcome =
        host::RunFilter(module, host::LoadDocument(input),
                        {.filter = order.filter,
                         .drawColor = order.drawColor,
                         .backColor = order.backColor,
                         .reference = &reference,
                         .options = host::OptionsToRepeat(order.filter, reference)});
    if (outcome.status == host::RunStatus::Failed || outcome.status == host::RunStatus::Cancelled) {
        throw std::runtime_error(input.string() + ": " +
                                 (outcome.fault.empty() ? "the filter refused" : outcome.fault) +
                                 "; nothing was written");
    }
    host::SaveDocument(std::move(outcome.document), OutputFor(input, order.folder), {});
}

}  // namespace

BatchReport RunBatch(const host::Module& module, ImageProcess& reference, const BatchOrder& order,
                     const std::function<bool(size_t done)>& progress) {
    BatchReport report;
    for (size_t i = 0; i < order.inputs.size(); ++i) {
        if (!progress(i)) {
            report.cancelled = true;
            break;
        }
        try {
            Process(module, reference, order, order.inputs[i]);
            ++report.written;
        } catch (const std::bad_alloc&) {
            report.faults.push_back(order.inputs[i].string() +
                                    ": there is not enough memory; make the image smaller");
        } catch (const std::exception& fault) {
            report.faults.emplace_back(fault.what());
        }
    }
    return report;
}

}  // namespace imgbasic::viewer
