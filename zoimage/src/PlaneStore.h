// Memory of planes under a budget. A plane that was given back serves the next one of its size, so that
// frame after frame the same pages are written and none has to be asked of the system.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace Zo::Image {

class PlaneStore {
    struct GiveBack {
        PlaneStore* store = nullptr;
        std::size_t bytes = 0;
        void operator()(std::byte* data) const { store->give_back(data, bytes); }
    };

  public:
    // The memory of one plane. Given back to the store when it goes.
    using Plane = std::unique_ptr<std::byte[], GiveBack>;

    explicit PlaneStore(std::size_t budget) : budget_(budget) {}
    PlaneStore(const PlaneStore&) = delete;
    PlaneStore& operator=(const PlaneStore&) = delete;
    ~PlaneStore() { trim(0); }

    // Sets so much of the budget aside for planes that others hold.
    void set_aside(std::size_t bytes) { aside_ = bytes; }
    // What is left for the planes of this store.
    std::size_t budget() const { return budget_ > aside_ ? budget_ - aside_ : 0; }
    // Planes in use, spare ones, and what is set aside. Any thread; everything else is for one at a time.
    std::size_t bytes() const { return bytes_ + aside_; }
    // Of planes in use.
    std::size_t used() const { return used_; }

    // A plane of so many bytes, contents undefined; spare memory of other sizes goes if it must. The caller
    // sees to it that the planes in use leave room.
    Plane take(std::size_t bytes);
    // Returns spare memory to the system until the store has at most so many bytes.
    void trim(std::size_t bytes);

  private:
    void give_back(std::byte* data, std::size_t bytes);

    std::size_t budget_;
    std::atomic<std::size_t> aside_{0};
    std::atomic<std::size_t> bytes_{0};
    std::size_t used_ = 0;
    std::vector<std::pair<std::byte*, std::size_t>> spare_;
};

}  // namespace Zo::Image
