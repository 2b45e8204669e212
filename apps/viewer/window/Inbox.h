// Calls that other threads hand to the window's, which makes them in their order. What is left when it goes
// is not made.
#pragma once

#include <QSocketNotifier>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace veloxa::viewer {

class Inbox {
  public:
    // The thread that makes the calls; it runs an event loop.
    Inbox();
    ~Inbox();
    Inbox(const Inbox&) = delete;
    Inbox& operator=(const Inbox&) = delete;

    // Any thread; returns at once.
    void post(std::function<void()> call);

  private:
    void make_calls();

    int bell_;
    std::mutex mutex_;
    std::deque<std::function<void()>> calls_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace veloxa::viewer
