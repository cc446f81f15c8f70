#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "host/image_file.h"

namespace CLI {
class App;
}

namespace imgbasic::host {

/// Which files a command reads and writes, and how, as the user gave it.
struct FileOptions {
    std::vector<std::filesystem::path> inputs;
    std::filesystem::path output;
    std::string format;  ///< one of OutputFormats(); empty where a name tells it
    SaveOptions save;
    bool acceptLoss = false;  ///< go on where the result cannot keep everything
    size_t jobs = 1;
    bool quiet = false;
    bool verbose = false;
};

/// The group of --help in a command's help.
constexpr const char* kOtherGroup = "Other";

/// The words that one of these options takes, such as "--format"; none for another one.
std::vector<std::string> WordsOfFileOption(std::string_view flag);

/// Adds what every command that writes images has; parsing puts it into `files`.
void AddFileOptions(CLI::App& app, FileOptions& files);

}  // namespace imgbasic::host
