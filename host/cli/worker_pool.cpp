#include "host/cli/worker_pool.h"

#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <list>
#include <optional>
#include <string>

#include "host/image_file.h"

namespace imgbasic::host {
namespace {

using Work = std::function<bool(const FileJob&)>;

/// A process that does one job after the other. Both sides talk through a pair of sockets: a job's
/// number goes there, and whether it succeeded comes back.
class Worker {
  public:
    /// Throws std::runtime_error when the process cannot be started.
    Worker(const std::vector<FileJob>& jobs, const Work& work);
    /// Lets the process end, which has no job then.
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void Give(size_t job);
    /// Whether the job succeeded, waiting for the end of it; nothing when the process died.
    std::optional<bool> Result() const;
    /// What a process died of that is no more.
    std::string CauseOfDeath();

    size_t job() const { return job_; }
    int socket() const { return socket_; }

  private:
    pid_t process_ = -1;  ///< -1 once it has been waited for
    int socket_ = -1;
    size_t job_ = 0;
};

/// The life of a worker process.
[[noreturn]] void Serve(int socket, const std::vector<FileJob>& jobs, const Work& work) {
    size_t job = 0;
    while (recv(socket, &job, sizeof job, 0) == sizeof job) {
        const bool done = work(jobs[job]);
        std::fflush(nullptr);
        if (send(socket, &done, sizeof done, MSG_NOSIGNAL) != sizeof done) {
            break;
        }
    }
    _exit(EXIT_SUCCESS);
}

Worker::Worker(const std::vector<FileJob>& jobs, const Work& work) {
    int ends[2];
    const pid_t parent = getpid();
    const bool hasSockets = socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) == 0;
    process_ = hasSockets ? fork() : -1;
    if (process_ < 0) {
        const std::string reason = std::strerror(errno);
        if (hasSockets) {
            close(ends[0]);
            close(ends[1]);
        }
        throw std::runtime_error("no worker process can be started (" + reason +
                                 "); use fewer --jobs");
    }
    if (process_ == 0) {
        // A worker goes along with the process that it works for, however that ends.
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != parent) {
            _exit(EXIT_FAILURE);
        }
        close(ends[0]);
        Serve(ends[1], jobs, work);
    }
    socket_ = ends[0];
    close(ends[1]);
}

Worker::~Worker() {
    // Closing alone would tell it nothing: workers that were started later hold the socket, too.
    shutdown(socket_, SHUT_RDWR);
    close(socket_);
    if (process_ > 0) {
        waitpid(process_, nullptr, 0);
    }
}

void Worker::Give(size_t job) {
    job_ = job;
    // Whether it is still there to take the job shows where the result is awaited.
    (void)send(socket_, &job, sizeof job, MSG_NOSIGNAL);
}

std::optional<bool> Worker::Result() const {
    bool done = false;
    const bool isAlive = recv(socket_, &done, sizeof done, 0) == sizeof done;
    return isAlive ? std::optional(done) : std::nullopt;
}

std::string Worker::CauseOfDeath() {
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = -1;
    return WIFSIGNALED(status) ? strsignal(WTERMSIG(status))
                               : "exit status " + std::to_string(WEXITSTATUS(status));
}

/// Tells what was written; how many jobs failed, one or none.
size_t Settled(const FileJob& job, bool done, const Report& report) {
    if (done && job.output != kStandardStream) {
        report.Written(job.output);
    }
    return done ? 0 : 1;
}

/// All workers that have a job.
class Pool {
  public:
    Pool(const std::vector<FileJob>& jobs, size_t size, const Report& report, const Work& work)
        : jobs_(jobs), size_(size), report_(report), work_(work) {}

    /// Does all jobs; how many failed.
    size_t Run() {
        Fill();
        for (size_t done = 0; !busy_.empty(); ++done) {
            report_.Progress(done, jobs_.size());
            const auto worker = WaitForOne();
            const std::optional<bool> result = worker->Result();
            failed_ += Settled(jobs_[worker->job()], result.value_or(false), report_);
            if (!result) {
                report_.Error(InputName(jobs_[worker->job()].input) +
                              ": the worker process died (" + worker->CauseOfDeath() +
                              "); nothing was written");
                busy_.erase(worker);
                Fill();
            } else if (next_ < jobs_.size()) {
                worker->Give(next_++);
            } else {
                busy_.erase(worker);
            }
        }
        report_.Progress(jobs_.size(), jobs_.size());
        return failed_;
    }

  private:
    /// Starts workers for the next jobs, as many as there may be; where the system allows fewer,
    /// those have to do.
    void Fill() {
        while (busy_.size() < size_ && next_ < jobs_.size()) {
            try {
                busy_.emplace_back(jobs_, work_).Give(next_);
                ++next_;
            } catch (const std::runtime_error&) {
                if (busy_.empty()) {
                    throw;
                }
                size_ = busy_.size();
            }
        }
    }

    /// The worker that has something to say, or is no more.
    std::list<Worker>::iterator WaitForOne() {
        std::vector<pollfd> sockets;
        for (const Worker& worker : busy_) {
            sockets.push_back({worker.socket(), POLLIN, 0});
        }
        while (poll(sockets.data(), sockets.size(), -1) < 0) {
        }
        const auto ready =
            std::ranges::find_if(sockets, [](const pollfd& socket) { return socket.revents != 0; });
        return std::next(busy_.begin(), ready - sockets.begin());
    }

    const std::vector<FileJob>& jobs_;
    size_t size_;
    const Report& report_;
    const Work& work_;
    std::list<Worker> busy_;
    size_t next_ = 0;
    size_t failed_ = 0;
};

size_t DoOneByOne(const std::vector<FileJob>& jobs, const Report& report, const Work& work) {
    size_t failed = 0;
    for (size_t index = 0; index < jobs.size(); ++index) {
        if (jobs.size() > 1) {
            report.Progress(index, jobs.size());
        }
        failed += Settled(jobs[index], work(jobs[index]), report);
    }
    report.Progress(jobs.size(), jobs.size());
    return failed;
}

}  // namespace

size_t DoJobs(const std::vector<FileJob>& jobs, size_t workers, const Report& report,
              const Work& work) {
    if (std::min(workers, jobs.size()) <= 1) {
        return DoOneByOne(jobs, report, work);
    }
    // Whoever started this process may have left the ends of children ignored.
    std::signal(SIGCHLD, SIG_DFL);
    // The other workers keep the processors busy; the image library's threads would only compete
    // with them.
    setenv("VIPS_CONCURRENCY", "1", 0);
    // What the library takes to start is more than a small file does.
    StartCodecs();
    std::fflush(nullptr);
    return Pool(jobs, workers, report, work).Run();
}

}  // namespace imgbasic::host
