#include "window/Inbox.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>
#include <utility>

namespace veloxa::viewer {

Inbox::Inbox() : bell_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (bell_ < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    notifier_ = std::make_unique<QSocketNotifier>(bell_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { make_calls(); });
}

Inbox::~Inbox() {
    notifier_.reset();
    ::close(bell_);
}

void Inbox::post(std::function<void()> call) {
    const std::lock_guard lock(mutex_);
    calls_.push_back(std::move(call));
    const std::uint64_t one = 1;
    static_cast<void>(!::write(bell_, &one, sizeof one));  // fails where it rings already
}

// What comes meanwhile has rung again, and waits until the window's own events had their turn. One at a time:
// a call may run an event loop, which makes those behind it.
void Inbox::make_calls() {
    std::uint64_t rings = 0;
    static_cast<void>(!::read(bell_, &rings, sizeof rings));
    std::unique_lock lock(mutex_);
    for (std::size_t n = calls_.size(); n > 0 && !calls_.empty(); --n) {
        const std::function<void()> call = std::move(calls_.front());
        calls_.pop_front();
        lock.unlock();
        call();
        lock.lock();
    }
}

}  // namespace veloxa::viewer
