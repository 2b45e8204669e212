// Renders frames: while one is keyed, the next is decoded and the last encoded.
//
// Three threads hand frames on; at most kFramesInFlight are in memory. A frame that cannot be read, keyed or
// written is reported, and the others go on. When the caller's flag is raised everything in flight is given
// up, and no unfinished file is left; when the plan's is, what is in flight is finished. A stream that breaks
// off, on either side, ends the run after the frames before.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <semaphore>
#include <string>
#include <vector>

#include "ZoImage/Render.h"
#include "shot/Caller.h"
#include "shot/farm/Claim.h"
#include "shot/farm/Folders.h"
#include "shot/frames/FrameLoader.h"
#include "shot/node/ImageSource.h"
#include "shot/node/Node.h"
#include "shot/sequence/KeyPlan.h"
#include "shot/sequence/Queue.h"
#include "shot/sequence/StreamOutput.h"

namespace veloxa {

// What became of the frames of a run.
struct FrameCounts {
    int made = 0;   // of the others
    int kept = 0;   // left out, as they were whole
    int stale = 0;  // made again, as they were asked for otherwise
    int failed = 0;
    int others = 0;  // that other processes make
    int left = 0;    // not begun, as the plan's flag was raised; 1 of a stream's, that nobody has counted
};

// What keying frames took: sums over the frames of a run. Each stage of the pipeline writes only its own
// time.
struct KeyStats {
    std::chrono::nanoseconds read{0};
    std::chrono::nanoseconds key{0};
    std::chrono::nanoseconds write{0};
    int frames = 0;  // keyed
    FrameCounts counts;
    bool may_mend = false;        // whether another run may do what this one did not
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

    // A frame that is to be made.
    struct Wanted {
        FrameReport report;
        std::vector<std::string> fingerprints{};  // one an output; none without
        Claims::Claim claim{};                    // null without
    };
    struct Decoded {
        Wanted wanted;
        FrameInputs inputs;
        Slot slot;
    };
    struct Keyed {
        Wanted wanted;
        std::vector<Image> pictures;  // one an output; they share planes
        Slot slot;
    };

    void decode();
    // Begins the range's nth frame unless it is kept, or goes to `others`, who have claimed it. False where
    // no frame is to be begun any more. Throws Interrupted.
    bool begin(int n, std::vector<int>& others);
    bool keep(int frame);  // true
    // False where no frame comes after this one.
    bool decode(Wanted wanted, Slot slot);
    bool ends() const { return plan_.end && plan_.end->raised(); }
    // What every error of a frame goes to.
    void note_failure(FrameReport& report, const std::string& line, bool may_pass);
    // Nothing for a frame that is kept.
    std::optional<Wanted> if_wanted(int frame) const;
    void key();
    void encode();
    std::vector<Image> render(const FrameInputs& inputs);
    Image render_picture(const Image& foreground, const std::string& mode);
    void write(const Keyed& keyed, std::size_t output);
    WriteOptions how_to_write(const Wanted& wanted, std::size_t output) const;
    // Beside files that cannot hold it; beside stills only where they are resumed.
    void note_fingerprint(const std::string& path, std::size_t output, const WriteOptions& how) const;
    // A frame that comes to nothing.
    void fail(FrameReport& report);
    bool stopped() const { return (caller_.abort && caller_.abort->raised()) || stream_.broken(); }
    // So many more rows, as parts of a frame, are rendered, and frames finished or given up.
    void count(double rows, int frames);
    // Runs one stage's work for a frame; false, with a report unless it was interrupted, when it fails.
    template <class Work>
    bool attempt(FrameReport& report, const Work& work);

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
    const Folders folders_;
    std::atomic<bool> failed_{false};
    std::atomic<bool> may_pass_{false};  // one of the failures
    std::atomic<int> frames_failed_{0};
    int begun_ = 0;
    std::optional<Claims> claims_;  // before the queues, which hold some
    std::atomic<double> rendered_{0.0};
    std::atomic<int> finished_{0};
    bool told_left_out_ = false;  // metadata; the frames of a sequence are alike
    Slots slots_{kFramesInFlight};
    Queue<Decoded> decoded_;
    Queue<Keyed> keyed_;
};

}  // namespace veloxa
