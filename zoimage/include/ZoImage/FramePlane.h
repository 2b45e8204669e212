// Memory for whole frames.
//
// A plane's pixels are undefined until written: whoever fills it first, often many threads, pays for its
// pages. Large planes ask the system for large pages, as the columns of a frame touch a page each row, and go
// back to the system at once when they are freed.
#pragma once

#include <cstddef>
#include <new>
#include <vector>

namespace Zo::Image {

// What a plane of so many bytes takes.
std::size_t frame_size(std::size_t bytes);
// Throws bad_alloc.
void* allocate_frame(std::size_t bytes);
// Takes the number that the plane was allocated with.
void free_frame(void* memory, std::size_t bytes) noexcept;

template <class T>
struct FrameAllocator {
    using value_type = T;

    FrameAllocator() = default;
    template <class U>
    FrameAllocator(const FrameAllocator<U>&) noexcept {}  // NOLINT: what an allocator has to have

    T* allocate(std::size_t n) {
        if (n > static_cast<std::size_t>(-1) / 2 / sizeof(T)) throw std::bad_array_new_length();
        return static_cast<T*>(allocate_frame(n * sizeof(T)));
    }
    void deallocate(T* memory, std::size_t n) noexcept { free_frame(memory, n * sizeof(T)); }

    template <class U>
    void construct(U* at) {
        ::new (static_cast<void*>(at)) U;
    }
    template <class U, class... Args>
    void construct(U* at, Args&&... args) {
        ::new (static_cast<void*>(at)) U(static_cast<Args&&>(args)...);
    }

    bool operator==(const FrameAllocator&) const { return true; }
};

template <class T>
using FramePlane = std::vector<T, FrameAllocator<T>>;

}  // namespace Zo::Image
