#include "host/cli/module_message.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "plugin/imgbasic/texts.h"

namespace imgbasic::host {
namespace {

using texts::Message;

/// The only filter that says why it refuses.
constexpr std::string_view kTalkingFilter = "chan_merge";

struct Translation {
    Message message;
    const char* english;  ///< %s stands for the tag of the channel that the message names
};

constexpr Translation kTranslations[] = {
    {Message::NotAChannelImage,
     "the layer is none of a picture's channels; name one whose name begins with [R], [G], [B] or "
     "[A] by --layer"},
    {Message::DuplicateChannelImage,
     "there are several %s layers of that name; remove or rename all but one"},
    {Message::ChannelImageAtOtherLevel,
     "the %s layer lies in another folder; move it to the other channels"},
    {Message::MissingChannelImages,
     "the four layers [R], [G], [B] and [A] of that name are not all there; add what is missing"},
    {Message::AlphaMustBeBelow,
     "the [A] layer lies above another channel; move it below all of them"},
};

constexpr const char* kTags[] = {"[R]", "[G]", "[B]", "[A]"};

std::string With(std::string text, const std::string& argument) {
    const size_t place = text.find("%s");
    return place == std::string::npos ? text : text.replace(place, 2, argument);
}

bool SpeaksJapanese() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const locale = std::getenv(name);
        if (locale != nullptr && *locale != '\0') {
            return std::string_view(locale).starts_with("ja");
        }
    }
    return false;
}

/// Keeps what is written to standard error from there, as long as it exists.
class HeldStandardError {
  public:
    HeldStandardError() : file_(memfd_create("messages", MFD_CLOEXEC)), outside_(dup(kStream)) {
        std::fflush(stderr);
        isHeld_ = file_ >= 0 && outside_ >= 0 && dup2(file_, kStream) >= 0;
    }
    ~HeldStandardError() {
        Release();
        close(file_);
        close(outside_);
    }
    HeldStandardError(const HeldStandardError&) = delete;
    HeldStandardError& operator=(const HeldStandardError&) = delete;

    /// Lets the stream go on; what was written meanwhile.
    std::string Take() {
        Release();
        std::string text;
        std::array<char, 512> part{};
        off_t place = 0;
        ssize_t count = 0;
        while ((count = pread(file_, part.data(), part.size(), place)) > 0) {
            text.append(part.data(), static_cast<size_t>(count));
            place += count;
        }
        return text;
    }

  private:
    static constexpr int kStream = STDERR_FILENO;

    void Release() {
        std::fflush(stderr);
        if (std::exchange(isHeld_, false)) {
            dup2(outside_, kStream);
        }
    }

    int file_;
    int outside_;
    bool isHeld_ = false;
};

}  // namespace

std::string InEnglish(std::string_view message) {
    for (const auto& [known, english] : kTranslations) {
        for (size_t channel = 0; channel < std::size(kTags); ++channel) {
            if (message == With(texts::Of(known).utf8, texts::kChannelNames[channel].utf8)) {
                return With(english, kTags[channel]);
            }
        }
    }
    return "";
}

RunOutcome RunFilterInUsersLanguage(const Module& module, Document&& document,
                                    const RunRequest& request) {
    if (request.filter != kTalkingFilter || SpeaksJapanese()) {
        return RunFilter(module, std::move(document), request);
    }
    HeldStandardError held;
    RunOutcome outcome = RunFilter(module, std::move(document), request);
    const std::string said = held.Take();
    const std::string caption = std::string(texts::Of(Message::ErrorCaption).utf8) + ": ";
    std::string english;
    if (said.starts_with(caption)) {
        english = InEnglish(
            std::string_view(said).substr(caption.size(), said.find('\n') - caption.size()));
    }
    if (english.empty()) {
        std::fputs(said.c_str(), stderr);
    } else {
        outcome.fault = request.filter + " refused, because " + english;
    }
    return outcome;
}

}  // namespace imgbasic::host
