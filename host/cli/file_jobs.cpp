#include "host/cli/file_jobs.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

namespace imgbasic::host {
namespace {

/// Child processes, each at work on one job.
class Workers {
  public:
    Workers(const Report& report, const std::function<bool(const FileJob&)>& work)
        : report_(report), work_(work) {}

    size_t count() const { return jobs_.size(); }

    bool Start(const FileJob& job) {
        const pid_t parent = getpid();
        const pid_t child = fork();
        if (child < 0) {
            report_.Error(job.input.string() + ": no worker process can be started (" +
                          std::strerror(errno) + "); use fewer --jobs");
            return false;
        }
        if (child == 0) {
            // A worker goes along with the process that it works for, however that ends.
            prctl(PR_SET_PDEATHSIG, SIGTERM);
            if (getppid() != parent) {
                _exit(EXIT_FAILURE);
            }
            // The other workers keep the processors busy; the image library's threads would only
            // compete with them.
            setenv("VIPS_CONCURRENCY", "1", 0);
            const bool done = work_(job);
            std::fflush(nullptr);
            _exit(done ? EXIT_SUCCESS : EXIT_FAILURE);
        }
        jobs_.emplace(child, &job);
        return true;
    }

    /// Waits until one of them ends; whether its job succeeded.
    bool Wait() {
        int status = 0;
        const auto entry = jobs_.find(wait(&status));
        if (entry == jobs_.end()) {
            return true;  // a child that the caller's process had before
        }
        const FileJob& job = *entry->second;
        jobs_.erase(entry);
        if (WIFSIGNALED(status)) {
            report_.Error(job.input.string() + ": the worker process died (" +
                          strsignal(WTERMSIG(status)) + "); nothing was written");
        }
        return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
    }

  private:
    const Report& report_;
    const std::function<bool(const FileJob&)>& work_;
    std::map<pid_t, const FileJob*> jobs_;
};

bool DoOneByOne(const std::vector<FileJob>& jobs, const Report& report,
                const std::function<bool(const FileJob&)>& work) {
    bool allDone = true;
    for (size_t index = 0; index < jobs.size(); ++index) {
        if (jobs.size() > 1) {
            report.Progress(index, jobs.size());
        }
        allDone &= work(jobs[index]);
    }
    report.Progress(jobs.size(), jobs.size());
    return allDone;
}

}  // namespace

std::vector<FileJob> PlanJobs(const std::vector<std::filesystem::path>& inputs,
                              const std::filesystem::path& output) {
    std::error_code ignored;
    const bool isFolder = !output.has_filename() || std::filesystem::is_directory(output, ignored);
    if (!isFolder && inputs.size() > 1) {
        throw UsageError("several inputs need a folder to go to; write -o " + output.string() +
                         "/");
    }
    std::vector<FileJob> jobs;
    std::map<std::filesystem::path, std::filesystem::path> sources;
    for (const std::filesystem::path& input : inputs) {
        jobs.push_back({input, isFolder ? output / input.filename() : output});
        const auto [known, isNew] = sources.emplace(jobs.back().output, input);
        if (!isNew) {
            throw UsageError(known->second.string() + " and " + input.string() +
                             " would both become " + known->first.string() +
                             "; run them into different folders");
        }
    }
    if (isFolder) {
        // Where that fails, writing the files tells why.
        std::filesystem::create_directories(output, ignored);
    }
    return jobs;
}

bool DoJobs(const std::vector<FileJob>& jobs, size_t workers, const Report& report,
            const std::function<bool(const FileJob&)>& work) {
    if (workers <= 1) {
        return DoOneByOne(jobs, report, work);
    }
    // Whoever started this process may have left the ends of children ignored.
    std::signal(SIGCHLD, SIG_DFL);
    Workers running(report, work);
    bool allDone = true;
    size_t started = 0;
    while (started < jobs.size() || running.count() > 0) {
        report.Progress(started - running.count(), jobs.size());
        if (started < jobs.size() && running.count() < workers) {
            allDone &= running.Start(jobs[started++]);
        } else {
            allDone &= running.Wait();
        }
    }
    report.Progress(jobs.size(), jobs.size());
    return allDone;
}

}  // namespace imgbasic::host
