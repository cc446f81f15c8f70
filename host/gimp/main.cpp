#include <libgimp/gimp.h>

#include <exception>
#include <new>
#include <stdexcept>

#include "host/gimp/channels.h"
#include "host/gimp/dialog.h"
#include "host/gimp/procedure.h"
#include "host/gimp/scaling_run.h"
#include "host/gimp/target_run.h"
#include "host/gimp/words.h"
#include "host/layer_run.h"
#include "host/module.h"
#include "plugin/imgbasic/filters.h"

namespace imgbasic::host {
namespace {

/// The answer to a question was no.
struct Cancelled {};

Module LoadInstalledModule() {
    try {
        return LoadModule(FindModule(IMGBASIC_MODULE_FOLDER));
    } catch (const ModuleError& fault) {
        // What follows the semicolon is a way out that only a command line has.
        const std::string message = fault.what();
        throw RunError(message.substr(0, message.rfind(';')) + "; install imgbasic again");
    }
}

void RequireSupported(const FilterJob& job) {
    if (gimp_image_base_type(job.image) != GIMP_RGB) {
        throw RunError("imgbasic works on RGB images; choose Image > Mode > RGB first");
    }
    if (gimp_image_get_floating_sel(job.image) != -1) {
        throw RunError("there is a floating selection; anchor it or make it a layer first");
    }
    if (gimp_item_get_image(job.drawable) != job.image) {
        throw std::invalid_argument("the drawable belongs to another image");
    }
    if (!gimp_item_is_layer(job.drawable)) {
        throw RunError("a channel or a layer mask is active; choose a layer first");
    }
}

gint32 RunTarget(const Module& module, FilterJob& job, bool asks) {
    const auto run = asks ? AskOptions(module, job) : std::make_unique<TargetRun>(module, job);
    if (run == nullptr) {
        throw Cancelled();
    }
    return run->Apply();
}

gint32 RunScaling(const Module& module, FilterJob& job, bool asks) {
    if (asks && !AskSize(job)) {
        throw Cancelled();
    }
    ScaleImage(module, job);
    return job.drawable;
}

gint32 RunJob(FilterJob& job, bool asks) {
    RequireSupported(job);
    const Module module = LoadInstalledModule();
    if (FindOption(job.filter->name, "TargetType") != nullptr) {
        return RunTarget(module, job, asks);
    }
    if (job.filter->changesSize) {
        return RunScaling(module, job, asks);
    }
    return job.filter->phases == 1 ? DecomposeChannels(module, job) : MergeChannels(module, job);
}

/// What a procedure hands back to GIMP: the status and then the layer or what went wrong. GIMP
/// reads it before the next call.
class Answer {
  public:
    void Succeed(gint32 layer) {
        values_[0].data.d_status = GIMP_PDB_SUCCESS;
        values_[1] = {GIMP_PDB_LAYER, {}};
        values_[1].data.d_layer = layer;
        count_ = 2;
    }
    void Fail(GimpPDBStatusType status, const std::string& fault) {
        values_[0].data.d_status = status;
        fault_ = fault;
        values_[1] = {GIMP_PDB_STRING, {}};
        values_[1].data.d_string = fault_.data();
        count_ = fault.empty() ? 1 : 2;
    }
    void Give(gint* count, GimpParam** values) {
        values_[0].type = GIMP_PDB_STATUS;
        *count = count_;
        *values = values_;
    }

  private:
    GimpParam values_[2]{};
    gint count_ = 0;
    std::string fault_;
};

void Run(std::span<const GimpParam> params, const FilterRow& filter, Answer& answer) {
    try {
        if (params.size() < 3) {
            throw std::invalid_argument("a procedure of imgbasic takes run mode, image, drawable");
        }
        const auto mode = static_cast<GimpRunMode>(params[0].data.d_int32);
        FilterJob job{&filter, params[1].data.d_image, params[2].data.d_drawable, {}};
        job.values = mode == GIMP_RUN_NONINTERACTIVE
                         ? ValuesFrom(filter, params)
                         : LastValues(filter).value_or(InitialValues(filter, job.image));
        const gint32 layer = RunJob(job, mode == GIMP_RUN_INTERACTIVE);
        if (mode == GIMP_RUN_INTERACTIVE) {
            KeepValues(filter, job.values);
        }
        if (mode != GIMP_RUN_NONINTERACTIVE) {
            gimp_displays_flush();
        }
        answer.Succeed(layer);
    } catch (const Cancelled&) {
        answer.Fail(GIMP_PDB_CANCEL, "");
    } catch (const std::invalid_argument& fault) {
        answer.Fail(GIMP_PDB_CALLING_ERROR, fault.what());
    } catch (const std::bad_alloc&) {
        answer.Fail(GIMP_PDB_EXECUTION_ERROR,
                    "there is not enough memory; make the image smaller first");
    } catch (const std::exception& fault) {
        answer.Fail(GIMP_PDB_EXECUTION_ERROR, fault.what());
    }
}

void Query() {
    ChooseLanguage();
    for (const FilterRow& filter : kFilterRows) {
        InstallProcedure(filter);
    }
}

void RunProcedure(const gchar* name, gint count, const GimpParam* params, gint* resultCount,
                  GimpParam** results) {
    static Answer answer;
    ChooseLanguage();
    gegl_init(nullptr, nullptr);
    if (const FilterRow* filter = FindProcedure(name)) {
        Run({params, static_cast<size_t>(count)}, *filter, answer);
    } else {
        answer.Fail(GIMP_PDB_CALLING_ERROR, std::string("imgbasic has no procedure ") + name);
    }
    answer.Give(resultCount, results);
}

}  // namespace
}  // namespace imgbasic::host

extern const GimpPlugInInfo PLUG_IN_INFO;
const GimpPlugInInfo PLUG_IN_INFO = {nullptr, nullptr, imgbasic::host::Query,
                                     imgbasic::host::RunProcedure};

MAIN()
