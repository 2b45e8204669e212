#include "BufferPool.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <memory>
#include <new>
#include <utility>

namespace Zo::Image {

namespace {

constexpr std::align_val_t kAlignment{64};

// Few distinct sizes, so that a buffer freed for one span serves the next. The odd remainder keeps rows
// of a power of two from starting in the same cache sets.
std::size_t size_class(std::size_t floats) {
    const std::size_t step = std::max<std::size_t>(256, std::bit_floor(std::max<std::size_t>(floats, 1)) / 8);
    return (floats + step - 1) / step * step + 80;
}

void free_buffer(RowBuffer* buffer) {
    ::operator delete(buffer, kAlignment);
}

// Growing blocks; old ones stay because rows point at them.
struct Zeros {
    std::atomic<const std::vector<float>*> largest{nullptr};
    std::mutex mutex;
    std::vector<std::unique_ptr<const std::vector<float>>> blocks;
};

}  // namespace

BufferPool::~BufferPool() {
    for (const FreeList& list : free_) {
        for (RowBuffer* buffer = list.head; buffer != nullptr;)
            free_buffer(std::exchange(buffer, buffer->next));
    }
}

RowBuffer*& BufferPool::free_of(std::size_t capacity) {
    for (FreeList& list : free_) {
        if (list.capacity == capacity) return list.head;
    }
    free_.push_back({capacity, nullptr});
    return free_.back().head;
}

RowBuffer* BufferPool::take(std::size_t floats) {
    const std::size_t capacity = size_class(floats);
    if (BufferPool* pool = this_thread().buffers) {
        RowBuffer*& free = pool->free_of(capacity);
        if (free != nullptr) {
            free->references = 1;
            return std::exchange(free, free->next);
        }
    }
    void* memory = ::operator new(RowBuffer::kHeader + capacity * sizeof(float), kAlignment);
    return new (memory) RowBuffer{1, capacity, nullptr};
}

void BufferPool::give_back(RowBuffer* buffer) {
    BufferPool* pool = this_thread().buffers;
    if (pool == nullptr) return free_buffer(buffer);
    RowBuffer*& free = pool->free_of(buffer->capacity);
    buffer->next = std::exchange(free, buffer);
}

std::vector<Row> BufferPool::take_list() {
    BufferPool* pool = this_thread().buffers;
    if (pool == nullptr || pool->lists_.empty()) return {};
    std::vector<Row> list = std::move(pool->lists_.back());
    pool->lists_.pop_back();
    return list;
}

void BufferPool::give_back(std::vector<Row> list) {
    list.clear();
    if (BufferPool* pool = this_thread().buffers) pool->lists_.push_back(std::move(list));
}

std::list<BufferPool> BufferPools::take() {
    const std::lock_guard hold(mutex_);
    if (idle_.empty()) idle_.emplace_back();
    std::list<BufferPool> pool;
    pool.splice(pool.begin(), idle_, idle_.begin());
    return pool;
}

void BufferPools::give_back(std::list<BufferPool>& pool) {
    const std::lock_guard hold(mutex_);
    idle_.splice(idle_.begin(), pool);
}

const float* zeros(std::size_t floats) {
    static Zeros all;
    const std::vector<float>* largest = all.largest.load(std::memory_order_acquire);
    if (largest != nullptr && largest->size() >= floats) return largest->data();
    const std::lock_guard hold(all.mutex);
    largest = all.largest.load(std::memory_order_relaxed);
    if (largest != nullptr && largest->size() >= floats) return largest->data();
    const std::size_t size = std::max<std::size_t>(std::bit_ceil(floats), 4096);
    all.blocks.push_back(std::make_unique<const std::vector<float>>(size));
    all.largest.store(all.blocks.back().get(), std::memory_order_release);
    return all.blocks.back()->data();
}

}  // namespace Zo::Image
