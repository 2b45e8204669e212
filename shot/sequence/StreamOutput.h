// The output that standard output carries, frame after frame.
#pragma once

#include <atomic>
#include <memory>

#include "shot/files/ImageFile.h"
#include "shot/frames/FrameLoader.h"
#include "shot/movie/StreamWriter.h"

namespace veloxa {

// Frames are shown when those of the input stream are; without one, one after another in the order of the
// range, at the rate that the first one's header has as FramesPerSecond, else 24 a second. One thread, but
// where noted.
class StreamOutput {
  public:
    StreamOutput(const FrameRange& frames, const FrameLoader& loader) : frames_(frames), loader_(loader) {}

    // Throws Error, after which it is broken, and Interrupted.
    void write(int frame, const Image& image, const WriteOptions& options);
    // After the last frame. Throws likewise.
    void finish();
    // Whether no frame can be written any more; any thread.
    bool broken() const { return broken_; }

  private:
    void begin(const Image& image, const WriteOptions& options);
    template <class Work>
    void attempt(const Work& work);

    const FrameRange frames_;
    const FrameLoader& loader_;
    std::unique_ptr<StreamWriter> writer_;
    std::atomic<bool> broken_{false};
};

}  // namespace veloxa
