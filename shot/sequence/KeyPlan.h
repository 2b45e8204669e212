// What a run over frames makes.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ZoImage/Render.h"
#include "shot/farm/Fingerprint.h"
#include "shot/files/ImageFile.h"
#include "shot/frames/FrameLoader.h"
#include "shot/frames/FramePattern.h"
#include "shot/sequence/KeyOutput.h"

namespace veloxa {

// What became of a frame.
struct FrameReport {
    enum class State { kMade, kKept, kStale, kFailed, kOther };
    int frame = 0;
    State state = State::kMade;  // kStale: made again; kOther: left to another process
    std::chrono::nanoseconds read{0};
    std::chrono::nanoseconds key{0};
    std::chrono::nanoseconds write{0};
    std::string error{};  // of one that failed
};

// What is made of which frames, and how.
struct KeyPlan {
    FrameRange frames;  // one frame, of any number, for a still
    std::vector<KeyOutput> outputs;
    std::string program;     // with its version
    bool provenance = true;  // whether outputs say what made them, from what and how
    WriteOptions write;
    // Of the frames, for the files that they make; null where a stream carries them, which nobody can resume.
    std::shared_ptr<const Fingerprints> fingerprints;
    bool claim = false;   // leave out frames that other processes are at, and keep them from these ones
    bool resume = false;  // leave out frames whose outputs are whole and have these fingerprints
    int kept = 0;         // of the first frames, that are known to be such
    int threads = 0;
    // Takes each frame when nothing more comes of it; any thread, several at a time.
    std::function<void(const FrameReport&)> report = [](const FrameReport&) {};
    const Zo::Image::AbortFlag* end = nullptr;  // once it is raised, no frame is begun

    // Without what a frame or the node tells.
    WriteOptions how_to_write(const KeyOutput& output) const;
};

// What a frame is written to, and all frames, without streams.
std::vector<std::string> files_of(const KeyPlan& plan, int frame);
std::vector<std::string> files_of(const KeyPlan& plan);

// Says what can be known to go wrong with the outputs before any frame is rendered. Throws Error.
void check_outputs(const KeyPlan& plan, const FrameLoader::Names& inputs);

}  // namespace veloxa
