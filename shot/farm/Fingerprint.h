// A short text that tells whether two frames were asked for alike: with the same settings, of the same files.
//
// It is computed from what is asked for, not from what comes of it, so that no picture is read for it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ZoImage/Render.h"
#include "shot/frames/FrameLoader.h"

struct XXH3_state_s;

namespace veloxa {

// 128 bits of the values that were added. Names, order and where one value ends count.
class Digest {
  public:
    Digest();
    void add(std::string_view name, std::string_view value);
    // The bytes of a file; false where it cannot be read. Throws Interrupted.
    bool add_file(const std::string& path, const Zo::Image::AbortFlag* abort);
    // 32 digits of base 16.
    std::string text() const;

  private:
    struct Free {
        void operator()(XXH3_state_s* state) const;
    };
    std::unique_ptr<XXH3_state_s, Free> state_;
};

// What tells of a file that it is the same one.
enum class FileIs {
    kStatus,   // its path, size and time of change, in nanoseconds
    kContent,  // its name and what it holds
};

// The fingerprints of a sequence's frames. What a frame's files are is looked up when its fingerprints are
// asked for, so that has to come before they are read. Any thread may call const functions.
class Fingerprints {
  public:
    // Files that all frames share are looked at now. The flag, if given, outlives this.
    Fingerprints(FrameLoader::Names inputs, FileIs by, const Zo::Image::AbortFlag* abort);

    // Something that all frames depend on.
    void add(std::string_view name, std::string_view value) { shared_.add(name, value); }
    // Inputs of one frame that all frames depend on: the foreground, or all of them.
    void add_frame(int frame, bool foreground_alone);
    // How each output is made of what is keyed.
    void add_output(std::string how) { outputs_.push_back(std::move(how)); }

    // One for each output. Throws Interrupted.
    std::vector<std::string> of(int frame) const;

  private:
    // What is read of which file.
    std::string identity(std::size_t input, int frame) const;

    FrameLoader::Names inputs_;
    FileIs by_;
    const Zo::Image::AbortFlag* abort_;
    std::array<std::string, kInputCount> stills_;
    Digest shared_;
    std::vector<std::string> outputs_;
};

}  // namespace veloxa
