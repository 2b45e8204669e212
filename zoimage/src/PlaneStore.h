// Memory of planes under a budget. A plane that was given back serves the next one of its size, so that
// frame after frame the same pages are written and none has to be asked of the system.
#pragma once

#include <atomic>
#include <cstddef>
#include <utility>
#include <vector>

namespace Zo::Image {

class PlaneStore {
  public:
    // The memory of one plane. Given back to the store when it goes.
    class Plane {
      public:
        Plane() = default;
        Plane(PlaneStore* store, std::byte* data, std::size_t bytes)
            : store_(store), data_(data), bytes_(bytes) {}
        Plane(Plane&& other) noexcept
            : store_(other.store_), data_(std::exchange(other.data_, nullptr)), bytes_(other.bytes_) {}
        Plane& operator=(Plane&& other) noexcept {
            std::swap(store_, other.store_);
            std::swap(data_, other.data_);
            std::swap(bytes_, other.bytes_);
            return *this;
        }
        ~Plane() {
            if (data_ != nullptr) store_->give_back(data_, bytes_);
        }
        std::byte* data() const { return data_; }

      private:
        PlaneStore* store_ = nullptr;
        std::byte* data_ = nullptr;
        std::size_t bytes_ = 0;
    };

    explicit PlaneStore(std::size_t budget) : budget_(budget) {}
    PlaneStore(const PlaneStore&) = delete;
    PlaneStore& operator=(const PlaneStore&) = delete;
    ~PlaneStore() { trim(); }

    std::size_t budget() const { return budget_; }
    // Planes in use and spare ones. Any thread; everything else is for one thread at a time.
    std::size_t bytes() const { return bytes_.load(std::memory_order_relaxed); }
    // Of planes in use.
    std::size_t used() const { return used_; }
    // What a plane that must hold `bytes` takes.
    static std::size_t size_of_plane(std::size_t bytes);

    // A plane of at least this many bytes, contents undefined; spare memory of other sizes goes if it must.
    // The caller sees to it that the planes in use leave room.
    Plane take(std::size_t bytes);
    // Returns the spare memory to the system.
    void trim();

  private:
    void give_back(std::byte* data, std::size_t bytes);

    std::size_t budget_;
    std::atomic<std::size_t> bytes_{0};
    std::size_t used_ = 0;
    std::vector<std::pair<std::byte*, std::size_t>> spare_;
};

}  // namespace Zo::Image
