#include "BufferPool.h"

#include <algorithm>
#include <atomic>
#include <bit>
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

RowBuffer* BufferPool::take(std::size_t floats) {
    const std::size_t capacity = size_class(floats);
    if (BufferPool* pool = this_thread().buffers) {
        for (FreeList& list : pool->free_) {
            if (list.capacity != capacity || list.head == nullptr) continue;
            RowBuffer* buffer = list.head;
            list.head = buffer->next;
            buffer->references = 1;
            return buffer;
        }
    }
    void* memory = ::operator new(RowBuffer::kHeader + capacity * sizeof(float), kAlignment);
    return new (memory) RowBuffer{1, capacity, nullptr};
}

void BufferPool::give_back(RowBuffer* buffer) {
    BufferPool* pool = this_thread().buffers;
    if (pool == nullptr) {
        free_buffer(buffer);
        return;
    }
    for (FreeList& list : pool->free_) {
        if (list.capacity != buffer->capacity) continue;
        buffer->next = list.head;
        list.head = buffer;
        return;
    }
    buffer->next = nullptr;
    pool->free_.push_back({buffer->capacity, buffer});
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

std::unique_ptr<BufferPool> BufferPools::take() {
    const std::lock_guard hold(mutex_);
    if (idle_.empty()) {
        idle_.reserve(made_ + 1);  // giving back must not fail
        auto pool = std::make_unique<BufferPool>();
        ++made_;
        return pool;
    }
    std::unique_ptr<BufferPool> pool = std::move(idle_.back());
    idle_.pop_back();
    return pool;
}

void BufferPools::give_back(std::unique_ptr<BufferPool> pool) {
    const std::lock_guard hold(mutex_);
    idle_.push_back(std::move(pool));
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
