#include "host/driver.h"

#include <chrono>
#include <exception>
#include <utility>

#include "host/layer_run.h"
#include "plugin/imgbasic/scaling.h"

namespace imgbasic::host {
namespace {

/// A run in progress. The module's callback takes nothing, so the one that it means is static.
class ActiveRun {
  public:
    /// `consumed`, when there is one, is the document itself, for a single run.
    ActiveRun(const Module& module, const Document& document, Document* consumed,
              const RunRequest& request)
        : module_(module), document_(document), consumed_(consumed), request_(request) {
        active_ = this;
    }
    ~ActiveRun() { active_ = nullptr; }
    ActiveRun(const ActiveRun&) = delete;
    ActiveRun& operator=(const ActiveRun&) = delete;

    static bool Exists() { return active_ != nullptr; }

    RunOutcome Run();

  private:
    static bool ApplyActive() { return active_ != nullptr && active_->Apply(); }

    bool Apply();
    RunOutcome RunOnce();
    Document TakeSource();
    void FollowNewSize(RunOutcome& outcome);

    inline static ActiveRun* active_ = nullptr;

    const Module& module_;
    const Document& document_;
    Document* consumed_;
    bool isConsumed_ = false;
    const RunRequest& request_;
    FilterObject object_;
    bool applying_ = false;
    RunOutcome outcome_;
};

RunOutcome Failure(std::string fault) {
    return {.status = RunStatus::Failed, .fault = std::move(fault)};
}

RunOutcome ActiveRun::Run() {
    const char* filter = request_.filter.c_str();
    object_ = {module_.prepare(filter, document_.width, document_.height, 0, request_.current.item,
                               request_.current.layer, request_.drawColor, request_.backColor, 0,
                               request_.ownerWindow, 0, request_.reference),
               {module_.dispose, request_.filter}};
    if (!object_) {
        return Failure("the module has no filter '" + request_.filter + "'");
    }
    if (request_.reference != nullptr && request_.filter == "scaling") {
        // It looks at no reference, and would ask for every image.
        ExchangeOptions(*object_, request_.options);
        static_cast<ScalingImageProcess&>(*object_).skipDialog = true;
    }
    const int confirmed = module_.dialog(filter, object_.get(), &ApplyActive);
    if (confirmed != 1 && outcome_.status != RunStatus::Failed) {
        return {.status = RunStatus::Cancelled};
    }
    outcome_.object = std::move(object_);
    return std::move(outcome_);
}

bool ActiveRun::Apply() {
    if (applying_) {
        return false;
    }
    applying_ = true;
    // The module's dialog stores the object's fields when it is confirmed, after this call.
    const std::vector<OptionValue> loaded = ExchangeOptions(*object_, request_.options);
    try {
        const auto start = std::chrono::steady_clock::now();
        outcome_ = RunOnce();
        outcome_.milliseconds =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
                .count();
        if (request_.onRun) {
            request_.onRun(outcome_);
        }
    } catch (const std::bad_alloc&) {
        outcome_ = Failure("there is not enough memory for the run");
    } catch (const std::exception& fault) {
        outcome_ = Failure(fault.what());
    }
    if (!request_.rememberOptions) {
        ExchangeOptions(*object_, loaded);
    }
    applying_ = false;
    return outcome_.status != RunStatus::Failed;
}

Document ActiveRun::TakeSource() {
    if (consumed_ == nullptr) {
        return document_;
    }
    if (isConsumed_) {
        throw RunError("the filter asked for a second run of a document that is gone");
    }
    isConsumed_ = true;
    return std::move(*consumed_);
}

RunOutcome ActiveRun::RunOnce() {
    const int32_t width = document_.width;
    const int32_t height = document_.height;
    LayerRun run(module_, request_.filter, *object_, TakeSource());
    const bool done = run.Run();
    RunOutcome outcome{.status = done ? RunStatus::Done : RunStatus::NothingToDo,
                       .document = {},
                       .points = request_.points};
    if (done || consumed_ != nullptr) {
        outcome.document = run.TakeDocument();
    }
    if (done && (outcome.document.width != width || outcome.document.height != height)) {
        FollowNewSize(outcome);
    }
    return outcome;
}

void ActiveRun::FollowNewSize(RunOutcome& outcome) {
    const char* filter = request_.filter.c_str();
    module_.adjustScale(filter, object_.get(), 0, 0, &outcome.scaleX, &outcome.scaleY);
    int index = 0;
    for (DocumentPoint& point : outcome.points) {
        module_.adjustLocate(filter, object_.get(), index++, point.position.item,
                             point.position.layer, &point.x, &point.y);
    }
}

RunOutcome Run(const Module& module, const Document& document, Document* consumed,
               const RunRequest& request) {
    if (ActiveRun::Exists()) {
        return Failure("another filter is still running");
    }
    return ActiveRun(module, document, consumed, request).Run();
}

}  // namespace

RunOutcome RunFilter(const Module& module, const Document& document, const RunRequest& request) {
    return Run(module, document, nullptr, request);
}

RunOutcome RunFilter(const Module& module, Document&& document, const RunRequest& request) {
    return Run(module, document, &document, request);
}

FilterObject PrepareBatch(const Module& module, const std::string& filter, HWND ownerWindow,
                          bool& cancelled) {
    int cancelFlag = 0;
    FilterObject object{module.batchPrepare(filter.c_str(), ownerWindow, &cancelFlag),
                        {module.batchDispose, filter}};
    cancelled = cancelFlag != 0;
    return object;
}

}  // namespace imgbasic::host
