// Renders frames: while one is keyed, the next is decoded and the last encoded.
//
// Three threads hand frames on; at most kFramesInFlight are in memory. A frame that cannot be read, keyed or
// written is reported, and the others go on. When the flag is raised everything in flight is given up, and
// no unfinished file is left. A stream that breaks off, on either side, ends the run after the frames before.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <semaphore>
#include <string>
#include <vector>

#include "ZoImage/Render.h"
#include "shot/Caller.h"
#include "shot/files/ImageFile.h"
#include "shot/frames/FrameLoader.h"
#include "shot/frames/FramePattern.h"
#include "shot/node/ImageSource.h"
#include "shot/node/Node.h"
#include "shot/sequence/KeyOutput.h"
#include "shot/sequence/Queue.h"
#include "shot/sequence/StreamOutput.h"

namespace veloxa {

struct KeyPlan {
    FrameRange frames;  // one frame, of any number, for a still
    std::vector<KeyOutput> outputs;
    std::string program;  // named in the outputs' provenance; empty for none
    WriteOptions write;
    bool resume = false;  // leave out frames whose outputs are whole
    int threads = 0;

    // Without what a frame or the node tells.
    WriteOptions how_to_write(const KeyOutput& output) const;
};

// Says what can be known to go wrong with the outputs before any frame is rendered. Throws Error.
void check_outputs(const KeyPlan& plan, const FrameLoader::Names& inputs);

// What keying frames took: sums over the frames of a run. Each stage of the pipeline writes only its own
// time.
struct KeyStats {
    std::chrono::nanoseconds read{0};
    std::chrono::nanoseconds key{0};
    std::chrono::nanoseconds write{0};
    int frames = 0;               // keyed
    std::int64_t frame_rows = 0;  // of the node's box, over all of them
    std::vector<Zo::Image::OpStats> ops;

    void add(const std::vector<Zo::Image::OpStats>& frame);
};

// Adds the time from construction to destruction.
class Stopwatch {
  public:
    explicit Stopwatch(std::chrono::nanoseconds& sum) : sum_(sum) {}
    ~Stopwatch() { sum_ += std::chrono::steady_clock::now() - start_; }
    Stopwatch(const Stopwatch&) = delete;
    Stopwatch& operator=(const Stopwatch&) = delete;

  private:
    std::chrono::nanoseconds& sum_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

class KeyPipeline {
  public:
    // Puts each frame on `inputs`, which are the node's, and renders `root`, which is the node or one of its
    // operators, over the node's box. The node's knobs must not be turned while it runs; it turns
    // "output_mode" itself where pictures differ in it.
    KeyPipeline(KeyPlan plan, FrameLoader& loader, Node& node, Zo::Image::Iop& root, NodeInputs& inputs,
                const Caller& caller);

    void measure_time() { renderer_.measure_time(true); }
    // Renders all frames; false when one could not be done. Throws Interrupted.
    bool run();
    const KeyStats& stats() const { return stats_; }

  private:
    static constexpr int kFramesInFlight = 3;
    using Slots = std::counting_semaphore<kFramesInFlight>;
    struct GiveBack {
        void operator()(Slots* slots) const { slots->release(); }
    };
    using Slot = std::unique_ptr<Slots, GiveBack>;  // the right to hold a frame

    struct Decoded {
        int frame;
        FrameInputs inputs;
        Slot slot;
    };
    struct Keyed {
        int frame;
        std::vector<Image> pictures;  // one an output; they share planes
        Slot slot;
    };

    void decode();
    // False where no frame comes after this one.
    bool decode(int frame);
    void key();
    void encode();
    std::vector<Image> render(const FrameInputs& inputs);
    Image render_picture(const Image& foreground, const std::string& mode);
    void write(const Keyed& keyed, std::size_t output);
    WriteOptions how_to_write(int frame, std::size_t output) const;
    bool is_done(int frame) const;
    bool stopped() const { return (caller_.abort && caller_.abort->raised()) || stream_.broken(); }
    // So many more rows, as parts of a frame, are rendered, and frames finished or given up.
    void count(double rows, int frames);
    // Runs one stage's work for a frame; false, with a report unless it was interrupted, when it fails.
    template <class Work>
    bool attempt(int frame, const Work& work);

    KeyPlan plan_;
    FrameLoader& loader_;
    Node& node_;
    Zo::Image::Iop& root_;
    const std::string own_mode_;      // of the knob "output_mode"
    std::vector<std::string> modes_;  // that the outputs need
    const std::string settings_;      // as a script
    const bool passes_;               // the foreground through, as no screen colour is set
    const bool mattes_alone_;         // no output has colour
    NodeInputs& inputs_;
    Caller caller_;
    Zo::Image::Renderer renderer_;
    StreamOutput stream_;  // of the output that is one
    KeyStats stats_;
    std::atomic<bool> failed_{false};
    std::atomic<double> rendered_{0.0};
    std::atomic<int> finished_{0};
    bool told_left_out_ = false;  // metadata; the frames of a sequence are alike
    Slots slots_{kFramesInFlight};
    Queue<Decoded> decoded_;
    Queue<Keyed> keyed_;
};

}  // namespace veloxa
