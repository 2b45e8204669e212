// Memory for rows: a pool per thread, so that taking and giving back costs neither a lock nor, once warm,
// an allocation.
#pragma once

#include <cstddef>
#include <vector>

namespace Zo::Image {

// Floats behind a reference count. The count is not atomic: a buffer never leaves its thread.
struct RowBuffer {
    std::size_t references;
    std::size_t capacity;  // floats; 0 in memory that is not a pool's
    RowBuffer* next;       // in the pool's free list

    float* data() { return reinterpret_cast<float*>(reinterpret_cast<std::byte*>(this) + kHeader); }
    static constexpr std::size_t kHeader = 64;  // keeps the floats on a cache line of their own
};

class BufferPool {
  public:
    static BufferPool& of_this_thread();
    // Takes one reference away; the last one gives the buffer back to this thread's pool.
    static void release(RowBuffer* buffer) {
        if (--buffer->references == 0 && buffer->capacity != 0) of_this_thread().put_back(buffer);
    }

    BufferPool() = default;
    BufferPool(const BufferPool&) = delete;
    BufferPool& operator=(const BufferPool&) = delete;
    ~BufferPool() { trim(); }

    // A buffer of at least `floats` floats, contents undefined, one reference.
    RowBuffer* take(std::size_t floats);
    // Gives the unused buffers back to the system.
    void trim();

    // At least `floats` zeros, which stay valid as long as the thread.
    const float* zeros(std::size_t floats);

  private:
    void put_back(RowBuffer* buffer);

    struct FreeList {
        std::size_t capacity;
        RowBuffer* head;
    };
    std::vector<FreeList> free_;
    std::vector<std::vector<float>> zeros_;  // growing sizes; old ones stay because rows point at them
};

}  // namespace Zo::Image
