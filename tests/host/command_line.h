#pragma once

#include <gmock/gmock.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>

#include "host/flatten.h"
#include "tests/host/test_files.h"

namespace imgbasic::host {

struct Result {
    int status = -1;
    std::string out;
    std::string err;
};

/// Runs the program in the test's folder, with a home there.
class CommandLine : public FileTest {
  protected:
    Result Run(const std::string& arguments) const {
        static const std::string program =
            std::filesystem::read_symlink("/proc/self/exe").parent_path() / "imgbasic";
        const std::string command = "export HOME='" + Path("home").string() +
                                    "'; unset XDG_CONFIG_HOME IMGBASIC_REMEMBERED; cd '" +
                                    Path("").string() + "' && { " + arguments + "; }";
        const std::string shell = "program='" + program +
                                  "'; imgbasic() { \"$program\" \"$@\"; }; { " + command +
                                  "; } 2>'" + ErrorPath() + "'";
        Result result;
        FILE* pipe = popen(shell.c_str(), "r");
        for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
            result.out += static_cast<char>(c);
        }
        const int status = pclose(pipe);
        result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        result.err = Bytes("../" + std::filesystem::path(ErrorPath()).filename().string());
        std::filesystem::remove(ErrorPath());
        return result;
    }

    /// The same of what must succeed.
    Result RunWell(const std::string& arguments) const {
        Result result = Run(arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        return result;
    }

    /// An image of 8 bits a channel.
    void WriteImage(const std::string& name, uint32_t seed) const {
        SaveDocument(OneLayer(13, 9, 8, RandomDocuments(seed).Pixels(13 * 9, 8)), Path(name), {});
    }

    std::vector<RGBA16> Pixels(const std::string& name) const {
        return Flatten(LoadDocument(Path(name)));
    }

  private:
    std::string ErrorPath() const {
        std::string path = Path("").parent_path().string();
        return path + ".err";
    }
};

}  // namespace imgbasic::host
