// Hands items from one thread to the next in order.
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace veloxa {

template <class T>
class Queue {
  public:
    void push(T item) {
        const std::lock_guard hold(mutex_);
        items_.push_back(std::move(item));
        changed_.notify_one();
    }
    // No item comes after this.
    void close() {
        const std::lock_guard hold(mutex_);
        closed_ = true;
        changed_.notify_all();
    }
    // Waits for the next item; nothing when the queue is closed and empty.
    std::optional<T> pop() {
        std::unique_lock hold(mutex_);
        changed_.wait(hold, [this] { return closed_ || !items_.empty(); });
        if (items_.empty()) return std::nullopt;
        std::optional<T> item(std::move(items_.front()));
        items_.pop_front();
        return item;
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<T> items_;
    bool closed_ = false;
};

}  // namespace veloxa
