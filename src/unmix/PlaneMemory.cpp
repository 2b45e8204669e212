#include "unmix/PlaneMemory.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace unmix {

namespace {

constexpr std::size_t kSmallest = std::size_t{1} << 16U;  // the heap is quick with less
constexpr std::size_t kLargest = std::size_t{1} << 23U;   // larger ones live for long
constexpr std::size_t kMost = std::size_t{48} << 20U;     // that is kept

class Kept {
  public:
    ~Kept() {
        for (const Block& block : blocks_) Zo::Image::free_frame(block.memory, block.bytes);
    }

    void* take(std::size_t bytes) {
        const std::lock_guard<std::mutex> guard(mutex_);
        const auto found = std::find_if(blocks_.rbegin(), blocks_.rend(),
                                        [&](const Block& block) { return block.bytes == bytes; });
        if (found == blocks_.rend()) return nullptr;
        void* const memory = found->memory;
        blocks_.erase(std::next(found).base());
        bytes_ -= bytes;
        return memory;
    }

    // The oldest make room.
    void give(void* memory, std::size_t bytes) {
        const std::lock_guard<std::mutex> guard(mutex_);
        blocks_.push_back({memory, bytes});
        bytes_ += bytes;
        while (bytes_ > kMost) {
            Zo::Image::free_frame(blocks_.front().memory, blocks_.front().bytes);
            bytes_ -= blocks_.front().bytes;
            blocks_.erase(blocks_.begin());
        }
    }

  private:
    struct Block {
        void* memory;
        std::size_t bytes;
    };
    std::mutex mutex_;
    std::vector<Block> blocks_;
    std::size_t bytes_ = 0;
};

Kept& kept() {
    static Kept memory;
    return memory;
}

bool keeps(std::size_t bytes) {
    return bytes >= kSmallest && bytes <= kLargest;
}

}  // namespace

void* take_memory(std::size_t bytes) {
    void* const memory = keeps(bytes) ? kept().take(bytes) : nullptr;
    return memory != nullptr ? memory : Zo::Image::allocate_frame(bytes);
}

void give_memory(void* memory, std::size_t bytes) noexcept {
    if (!keeps(bytes)) return Zo::Image::free_frame(memory, bytes);
    try {
        kept().give(memory, bytes);
    } catch (...) {
        Zo::Image::free_frame(memory, bytes);
    }
}

}  // namespace unmix
