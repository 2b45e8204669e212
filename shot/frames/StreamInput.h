// The input that standard input carries, frame after frame.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <optional>

#include "shot/Caller.h"
#include "shot/frames/FramePattern.h"
#include "shot/frames/LoadedInput.h"
#include "shot/movie/StreamReader.h"

namespace veloxa {

// Frames are numbered from the first of the range on, one after another. One thread at a time, but where
// noted.
class StreamInput {
  public:
    enum class Use { kColour, kMatte };

    // What is done to a frame before anybody gets it; appends that to what names the pixels.
    using Ready = std::function<void(Image&, Zo::Image::Hash&)>;

    // Reads the stream's header. A frame of a matte is its alpha or, without one, its red as alpha. Throws
    // Error and Interrupted.
    StreamInput(const FrameRange& frames, Use use, Ready ready, const Caller& caller);

    // Reads on until the frame is there; false at the end of a stream of an open range. Frames before it are
    // gone. Throws Error when the stream is damaged, or ends before its time; then it is broken.
    bool reach(int frame);
    // The frame that was reached last; it stays to be asked for again.
    const LoadedInput& frame() const { return current_; }
    // Whether nothing that comes after can be trusted.
    bool broken() const { return broken_; }

    const StreamInfo& info() const { return reader_.info(); }
    // When one of the last frames that were reached is shown. Any thread.
    FrameTime time_of(int frame) const;
    // Has reach() throw Interrupted; any thread.
    void stop() { reader_.stop(); }

  private:
    static constexpr std::size_t kTimes = 16;  // more than frames are on their way through a pipeline

    std::optional<StreamFrame> next();

    const FrameRange frames_;
    const Use use_;
    const Ready ready_;
    StreamReader reader_;
    LoadedInput current_;
    int number_;  // of the current frame
    bool broken_ = false;
    mutable std::mutex mutex_;  // guards the times
    std::map<int, FrameTime> times_;
};

}  // namespace veloxa
