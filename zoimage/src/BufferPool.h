// Memory for rows. Each job of a render has a pool to itself, so that taking and giving back costs neither a
// lock nor, once warm, an allocation. Outside a render rows take theirs from the heap.
#pragma once

#include <cstddef>
#include <list>
#include <mutex>
#include <vector>

#include "ThisThread.h"
#include "ZoImage/Row.h"

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
    BufferPool() = default;
    BufferPool(const BufferPool&) = delete;
    BufferPool& operator=(const BufferPool&) = delete;
    ~BufferPool();

    // A buffer of at least `floats` floats for a row of this thread, contents undefined, one reference.
    static RowBuffer* take(std::size_t floats);
    // Takes one reference away; the last one gives the buffer back.
    static void release(RowBuffer* buffer) {
        if (--buffer->references == 0 && buffer->capacity != 0) give_back(buffer);
    }

    // Empty lists of rows, which keep their room for the thread's next tile.
    static std::vector<Row> take_list();
    static void give_back(std::vector<Row> list);

  private:
    static void give_back(RowBuffer* buffer);

    struct FreeList {
        std::size_t capacity;
        RowBuffer* head;
    };
    // The free buffers of this many floats.
    RowBuffer*& free_of(std::size_t capacity);

    std::vector<FreeList> free_;
    std::vector<std::vector<Row>> lists_;
};

// The pools of a renderer's jobs; there are as many as ever worked at once.
class BufferPools {
  public:
    // Gives the calling thread a pool for a scope.
    class Lease {
      public:
        explicit Lease(BufferPools& pools)
            : pools_(pools), pool_(pools.take()), lent_(this_thread().buffers, &pool_.front()) {}
        ~Lease() { pools_.give_back(pool_); }
        Lease(const Lease&) = delete;
        Lease& operator=(const Lease&) = delete;

      private:
        BufferPools& pools_;
        std::list<BufferPool> pool_;
        Scoped<BufferPool*> lent_;
    };

  private:
    // Lists of one, so that giving back cannot fail.
    std::list<BufferPool> take();
    void give_back(std::list<BufferPool>& pool);

    std::mutex mutex_;
    std::list<BufferPool> idle_;
};

// At least `floats` zeros, which stay as long as the engine. Any thread.
const float* zeros(std::size_t floats);

}  // namespace Zo::Image
