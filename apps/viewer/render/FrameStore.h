// The frames of a shot in memory: read ahead on a thread of its own, kept under a byte budget, read again
// when their files change. Every call returns at once; any thread.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ZoImage/Hash.h"
#include "ZoImage/Render.h"
#include "session/State.h"
#include "shot/frames/FrameLoader.h"

namespace veloxa::viewer {

// What a file looked like when it was read.
struct FileMark {
    std::string path;
    std::int64_t size = -1;  // -1 for a file that is not there
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;

    static FileMark of(std::string path);
    friend bool operator==(const FileMark&, const FileMark&) = default;
};

// Immutable once it is handed out.
struct Frame {
    int number = 0;
    FrameInputs inputs;           // without drawn mattes; empty where it could not be read
    Zo::Image::Hash identity;     // of the inputs' pixels
    std::string error;            // FILE: what is wrong; empty for a frame that is whole
    std::vector<FileMark> files;  // as they were before it was read, by inputs
    std::size_t bytes = 0;        // that it alone holds
};
using FramePtr = std::shared_ptr<const Frame>;

class FrameStore {
  public:
    struct Calls {
        std::function<void(int frame)> changed;        // was read, failed or was let go; the reader's thread
        std::function<void(const std::string&)> told;  // a line about a file; the reader's thread
    };

    FrameStore(std::size_t budget, Calls calls);
    ~FrameStore();
    FrameStore(const FrameStore&) = delete;
    FrameStore& operator=(const FrameStore&) = delete;

    // Begins with other files, or anew with the same.
    void open(const ShotFiles& files);
    // The frame, if it is here or could not be read; null while it is not.
    FramePtr find(int frame);
    // Reads these, in this order; what was wanted before and is not among them is given up.
    void want(std::vector<int> frames);
    // Looks whether the files of a frame are as they were, and reads it again where they are not.
    void recheck(int frame);
    // Those that are here or could not be read, by their numbers.
    std::vector<FramePtr> held() const;

  private:
    void run();
    // The next thing to do, under the lock; false when it is time to end.
    bool next(std::unique_lock<std::mutex>& lock);
    void read(int frame, std::unique_lock<std::mutex>& lock);
    Frame load(int frame, const std::vector<FileMark>& marks);
    void look_again(int frame, std::unique_lock<std::mutex>& lock);
    void keep(FramePtr frame);
    bool is_wanted(int frame) const;

    const std::size_t budget_;
    const Calls calls_;
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    bool ending_ = false;
    ShotFiles files_;
    std::uint64_t shot_ = 0;    // counts openings
    std::list<FramePtr> kept_;  // the one that was used last in front
    std::vector<int> wanted_;
    std::vector<int> checks_;
    int reading_ = 0;  // while busy_
    bool busy_ = false;
    Zo::Image::AbortFlag abort_;  // gives the frame up that is being read

    // The reader's own.
    std::unique_ptr<FrameLoader> loader_;
    std::uint64_t loaders_shot_ = 0;
    std::vector<FileMark> stills_;

    std::thread reader_;
};

}  // namespace veloxa::viewer
