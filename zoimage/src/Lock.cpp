#include "ZoImage/Lock.h"

#include <algorithm>

namespace Zo::Image {

struct Lock::Loop {
    int next;
    int end;
    int grain;
    const Body& body;
    int active = 0;  // threads inside
    std::exception_ptr failure;
};

void Lock::acquire() {
    std::unique_lock hold(mutex_);
    while (held_) {
        if (loop_ != nullptr && loop_->next < loop_->end) {
            work(*loop_, hold);
        } else {
            changed_.wait(hold);
        }
    }
    held_ = true;
}

void Lock::release() {
    {
        const std::lock_guard hold(mutex_);
        held_ = false;
    }
    changed_.notify_all();
}

void Lock::work(Loop& loop, std::unique_lock<std::mutex>& hold) {
    ++loop.active;
    while (loop.next < loop.end) {
        const int begin = loop.next;
        loop.next = loop.end - begin > loop.grain ? begin + loop.grain : loop.end;
        const int end = loop.next;
        hold.unlock();
        std::exception_ptr failure;
        try {
            loop.body(begin, end);
        } catch (...) {
            failure = std::current_exception();
        }
        hold.lock();
        if (failure) {
            loop.failure = failure;
            loop.next = loop.end;
        }
    }
    if (--loop.active == 0) changed_.notify_all();
}

void Lock::parallel_for(int begin, int end, int grain, const Body& body) {
    if (begin >= end) return;
    Loop loop{begin, end, std::max(1, grain), body, 0, nullptr};
    std::unique_lock hold(mutex_);
    loop_ = &loop;
    changed_.notify_all();
    work(loop, hold);
    changed_.wait(hold, [&] { return loop.active == 0; });
    loop_ = nullptr;
    if (loop.failure) std::rethrow_exception(loop.failure);
}

}  // namespace Zo::Image
