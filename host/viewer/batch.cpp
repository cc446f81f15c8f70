#include "host/viewer/batch.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "host/driver.h"
#include "host/image_file.h"
#include "host/openraster.h"
#include "host/viewer/messages.h"
#include "host/viewer/progress_window.h"

namespace imgbasic::viewer {
namespace {

/// One file; returns remarks. Throws what reading, running or writing throws.
std::vector<std::string> Process(const host::Module& module, ImageProcess& reference,
                                 const BatchOrder& order, const std::filesystem::path& input) {
    const auto fail = [&](const std::string& fault) {
        throw std::runtime_error(input.string() + ": " + fault + "; nothing was written");
    };
    std::vector<std::string> notes;
    host::Document document = host::LoadDocument(input, &notes);
    const char* const extension = document.source ? ".ora" : ".png";
    const bool resizes = module.isSizeChange(order.filter.c_str());
    if (const auto losses = host::LossesOf(document, resizes); !losses.empty()) {
        fail(losses.front());
    }
    host::RunOutcome outcome =
        host::RunFilter(module, std::move(document),
                        {.filter = order.filter,
                         .drawColor = order.drawColor,
                         .backColor = order.backColor,
                         .reference = &reference,
                         .options = host::OptionsToRepeat(order.filter, reference)});
    if (outcome.status == host::RunStatus::Failed || outcome.status == host::RunStatus::Cancelled) {
        fail(outcome.fault.empty() ? "the filter refused" : outcome.fault);
    }
    const auto output = (order.folder / input.filename()).replace_extension(extension);
    std::ranges::move(host::SaveDocument(std::move(outcome.document), output, {}),
                      std::back_inserter(notes));
    return notes;
}

}  // namespace

void RunBatch(const host::Module& module, HWND owner, const BatchOrder& order) {
    bool cancelled = false;
    const host::FilterObject reference = host::PrepareBatch(module, order.filter, owner, cancelled);
    if (!reference) {
        return;
    }
    ProgressWindow window(owner);
    const size_t total = order.inputs.size();
    const auto ofTotal = [total](size_t count) {
        return std::to_wstring(count) + L" / " + std::to_wstring(total);
    };
    size_t written = 0;
    std::wstring report;
    for (size_t i = 0; i < total; ++i) {
        const std::filesystem::path& input = order.inputs[i];
        cancelled = !window.Tell(ofTotal(i + 1) + L": " + input.filename().wstring(), i, total);
        if (cancelled) {
            break;
        }
        try {
            report += Lines(Process(module, *reference, order, input));
            ++written;
        } catch (const std::bad_alloc&) {
            report += input.wstring() + L": " + phrases::kNoMemory.Get() + L"\r\n";
        } catch (const std::exception&) {
            report += FaultText() + L"\r\n";
        }
    }
    window.Report((cancelled ? phrases::kBatchStopped.Get() : L"") + ofTotal(written) +
                      phrases::kBatchDone.Get() + order.folder.wstring(),
                  report);
}

}  // namespace imgbasic::viewer
