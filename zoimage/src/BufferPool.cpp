#include "BufferPool.h"

#include <algorithm>
#include <bit>
#include <new>

#include "ThreadLocal.h"

namespace Zo::Image {

namespace {

constexpr std::align_val_t kAlignment{64};

ZO_FAST_THREAD_LOCAL BufferPool* this_thread = nullptr;

// Few distinct sizes, so that a buffer freed for one span serves the next. The odd remainder keeps rows
// of a power of two from starting in the same cache sets.
std::size_t size_class(std::size_t floats) {
    const std::size_t step = std::max<std::size_t>(256, std::bit_floor(std::max<std::size_t>(floats, 1)) / 8);
    return (floats + step - 1) / step * step + 80;
}

}  // namespace

BufferPool& BufferPool::of_this_thread() {
    if (this_thread == nullptr) {
        thread_local BufferPool pool;
        this_thread = &pool;
    }
    return *this_thread;
}

RowBuffer* BufferPool::take(std::size_t floats) {
    const std::size_t capacity = size_class(floats);
    for (FreeList& list : free_) {
        if (list.capacity != capacity || list.head == nullptr) continue;
        RowBuffer* buffer = list.head;
        list.head = buffer->next;
        buffer->references = 1;
        return buffer;
    }
    void* memory = ::operator new(RowBuffer::kHeader + capacity * sizeof(float), kAlignment);
    return new (memory) RowBuffer{1, capacity, nullptr};
}

void BufferPool::put_back(RowBuffer* buffer) {
    for (FreeList& list : free_) {
        if (list.capacity != buffer->capacity) continue;
        buffer->next = list.head;
        list.head = buffer;
        return;
    }
    buffer->next = nullptr;
    free_.push_back({buffer->capacity, buffer});
}

void BufferPool::trim() {
    for (FreeList& list : free_) {
        while (RowBuffer* buffer = list.head) {
            list.head = buffer->next;
            ::operator delete(buffer, kAlignment);
        }
    }
    free_.clear();
}

const float* BufferPool::zeros(std::size_t floats) {
    if (zeros_.empty() || zeros_.back().size() < floats) {
        zeros_.emplace_back(std::max<std::size_t>(std::bit_ceil(floats), 4096));
    }
    return zeros_.back().data();
}

}  // namespace Zo::Image
