// A lock whose waiting threads help the holder.
//
// The thread that holds it can run a loop with parallel_for; threads that wait in a Guard then take chunks
// of that loop until it ends. So a frame that must be computed under the lock takes all the threads that
// need it.
#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>

namespace Zo::Image {

class Lock {
  public:
    using Body = std::function<void(int begin, int end)>;

    // Calls body for consecutive pieces of [begin, end), each at most `grain` long, on this thread and on
    // the threads that wait; returns when all are done. Only the thread that holds the lock may call it,
    // and not from inside a body. Pieces must not depend on each other. An exception from a body ends the
    // loop early and is thrown here.
    void parallel_for(int begin, int end, int grain, const Body& body);

  private:
    friend class Guard;
    struct Loop;

    void acquire();
    void release();
    void work(Loop& loop, std::unique_lock<std::mutex>& hold);

    std::mutex mutex_;
    std::condition_variable changed_;
    bool held_ = false;
    Loop* loop_ = nullptr;
};

// Holds a Lock for a scope.
class Guard {
  public:
    explicit Guard(Lock& lock) : lock_(lock) { lock_.acquire(); }
    ~Guard() { lock_.release(); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

  private:
    Lock& lock_;
};

}  // namespace Zo::Image
