// The right to make a frame, which one of several processes over one folder has at a time.
//
// It is a hidden file beside the frame's first output, .NAME.claim, that names its holder, comes to be in one
// step and is locked. On one machine the lock tells whether the holder lives, so that the claim of a killed
// process can be taken over at once. On others it counts as given up when its holder has not touched it for
// kStaleAfter by the clock of the file system. Where a file system has no locks across machines, two may take
// over the same stale claim in the same moment; both then make the frame, alike.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>

namespace veloxa {

struct ClaimHolder {
    std::string machine;
    pid_t process = 0;
};
// Of a claim that is open; empty where it does not say.
ClaimHolder read_holder(int file);

// Whether a file of that name, without its folder, is a claim.
bool is_claim(const std::string& name);

// The claims of a process. Any thread.
class Claims {
  public:
    static constexpr std::chrono::seconds kBeat{15};  // between touches
    static constexpr std::chrono::seconds kStaleAfter{120};

    explicit Claims(std::chrono::milliseconds beat = kBeat);
    Claims(const Claims&) = delete;
    Claims& operator=(const Claims&) = delete;

    struct Held;
    struct LetGo {
        Claims* claims = nullptr;
        void operator()(Held* held) const { claims->let_go(held); }
    };
    // Let go of at its end.
    using Claim = std::unique_ptr<Held, LetGo>;

    // Null where another one has it. Throws TryAgain, where that may pass, or Error when the file cannot be
    // made.
    Claim take(const std::string& output);
    // Whether it is that of a process that is gone, and may have left more.
    static bool is_taken_over(const Claim& claim);

  private:
    void let_go(Held* held);
    void touch(const std::stop_token& stop);

    const std::chrono::milliseconds beat_;
    std::mutex mutex_;
    std::set<Held*> held_;
    std::condition_variable_any woken_;
    std::jthread toucher_;  // last: it uses the members above
};

}  // namespace veloxa
