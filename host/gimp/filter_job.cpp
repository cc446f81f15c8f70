#include "host/gimp/filter_job.h"

#include <utility>

#include "host/gimp/words.h"
#include "host/layer_run.h"

/// GIMP keeps the values last used, by its own means; the module's store stays as it is.
extern "C" const char* ImgbasicSettingsFile() {
    return "";
}

namespace imgbasic::host {
namespace {

uint32_t ColorFrom(gboolean (*getColor)(GimpRGB*)) {
    GimpRGB color{};
    getColor(&color);
    guchar r = 0;
    guchar g = 0;
    guchar b = 0;
    gimp_rgb_get_uchar(&color, &r, &g, &b);
    return uint32_t{r} << 16U | uint32_t{g} << 8U | uint32_t{b};
}

}  // namespace

int32_t& ValueOf(FilterJob& job, std::string_view option) {
    const FilterOption* const found = FindOption(job.filter->name, option);
    return job.values[static_cast<size_t>(found - job.filter->options.data())];
}

int32_t ValueOf(const FilterJob& job, std::string_view option) {
    return ValueOf(const_cast<FilterJob&>(job), option);
}

Progress::Progress(const FilterRow& filter, size_t steps) : steps_(steps) {
    gimp_progress_init(TitleOf(filter));
}

void Progress::Step() {
    ++done_;
    gimp_progress_update(static_cast<double>(done_) / static_cast<double>(steps_));
}

Document RunFilterOn(const Module& module, const FilterJob& job, Document document,
                     LayerPosition current, const std::vector<OptionValue>& changed) {
    RunRequest request{.filter = job.filter->name,
                       .current = current,
                       .drawColor = ColorFrom(gimp_context_get_foreground),
                       .backColor = ColorFrom(gimp_context_get_background)};
    for (size_t i = 0; i < job.values.size(); ++i) {
        request.options.push_back({&job.filter->options[i], job.values[i]});
    }
    request.options.insert(request.options.end(), changed.begin(), changed.end());
    RunOutcome outcome = RunFilter(module, std::move(document), request);
    if (outcome.status == RunStatus::Failed || outcome.status == RunStatus::Cancelled) {
        throw RunError(outcome.status == RunStatus::Failed ? outcome.fault : "cancelled");
    }
    return std::move(outcome.document);
}

}  // namespace imgbasic::host
