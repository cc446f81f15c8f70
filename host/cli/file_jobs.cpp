#include "host/cli/file_jobs.h"

#include <algorithm>
#include <map>
#include <string>
#include <system_error>

#include "host/cli/standard_streams.h"
#include "lib/base/ascii.h"

namespace imgbasic::host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kIndexedFormat = "png";

/// The ending of every output; empty where each has that of its name or its input.
std::string CommonFormat(const FileOptions& files, bool isNamed) {
    if (isNamed && !files.format.empty()) {
        throw UsageError("the ending of " + files.output.string() +
                         " says the format; leave out --format or write into a folder");
    }
    return files.format.empty() && files.save.encode.indexed && !isNamed ? kIndexedFormat
                                                                         : files.format;
}

void CheckStreams(const FileOptions& files, bool isFolder) {
    const auto streams = std::ranges::count(files.inputs, fs::path(kStandardStream));
    if (streams > 1) {
        throw UsageError("the standard input can be read only once; name - once");
    }
    if (streams > 0 && isFolder) {
        throw UsageError("the standard input has no name to go under in " + files.output.string() +
                         "; name its output or write -o -");
    }
    if (files.output == kStandardStream && IsStandardOutputTerminal()) {
        throw UsageError("the standard output is a terminal; send it to a file or a program");
    }
}

void CheckIndexed(const FileOptions& files, const std::string& extension) {
    if (files.save.encode.indexed && !EqualIgnoringCase(extension, ".png")) {
        throw UsageError("--indexed writes PNG; leave it out or let the output be PNG");
    }
}

}  // namespace

std::vector<FileJob> PlanJobs(const FileOptions& files) {
    const fs::path& output = files.output;
    std::error_code ignored;
    const bool isStream = output == kStandardStream;
    const bool isFolder =
        !isStream && (!output.has_filename() || fs::is_directory(output, ignored));
    if (!isFolder && files.inputs.size() > 1) {
        throw UsageError("several inputs need a folder to go to; write -o " +
                         (isStream ? "FOLDER" : output.string()) + "/");
    }
    CheckStreams(files, isFolder);
    const std::string format = CommonFormat(files, !isFolder && !isStream);
    std::vector<FileJob> jobs;
    std::map<fs::path, fs::path> sources;
    for (const fs::path& input : files.inputs) {
        FileJob& job =
            jobs.emplace_back(FileJob{input, isFolder ? output / input.filename() : output});
        if (isFolder && !format.empty()) {
            job.output.replace_extension(format);
        }
        const auto [known, isNew] = sources.emplace(job.output, input);
        if (!isNew) {
            throw UsageError(known->second.string() + " and " + input.string() +
                             " would both become " + known->first.string() +
                             "; run them into different folders");
        }
        if (!isStream) {
            job.extension = job.output.extension().string();
        } else if (!format.empty()) {
            job.extension = "." + format;
        }
        CheckIndexed(files, job.extension);
    }
    if (isFolder) {
        // Where that fails, writing the files tells why.
        fs::create_directories(output, ignored);
    }
    return jobs;
}

}  // namespace imgbasic::host
