// What programs read of a key's progress: lines instead of a bar.
#pragma once

#include <mutex>
#include <string>

#include "shot/sequence/KeyPipeline.h"

namespace veloxa {

// "json": a line a frame on standard error, {"frame", "state", "read_ms", "key_ms", "write_ms", "peak_mb",
// "error"}; state is made, kept, stale (made again), failed or other (left to another process), error null
// but for failed. "openjd": lines of the Open Job Description on standard output, openjd_progress: PERCENT,
// openjd_status: TEXT and openjd_fail: TEXT. Any thread.
class FrameLines {
  public:
    // So many frames, 0 where nobody knows; says nothing for any other form.
    FrameLines(const std::string& form, int frames) : form_(form), frames_(frames) {}

    void tell(const FrameReport& report);
    // What ended everything.
    void fail(const std::string& why);

  private:
    const std::string form_;
    const int frames_;
    std::mutex mutex_;
    int done_ = 0;
    int failed_ = 0;
};

}  // namespace veloxa
