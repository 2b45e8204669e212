// Memory for the reduced pictures, which come and go several dozen times a frame: what is given back is kept
// for the next of its size, up to a few dozen megabytes, so that the system need not clear pages again each
// time. Whole frames, which operators keep anyway, go straight to the system. Any thread.
#pragma once

#include <cstddef>
#include <new>

#include "ZoImage/FramePlane.h"

namespace unmix {

void* take_memory(std::size_t bytes);  // throws bad_alloc
void give_memory(void* memory, std::size_t bytes) noexcept;

template <class T>
struct PlaneAllocator : Zo::Image::FrameAllocator<T> {
    template <class U>
    struct rebind {
        using other = PlaneAllocator<U>;
    };
    using value_type = T;

    PlaneAllocator() = default;
    template <class U>
    PlaneAllocator(const PlaneAllocator<U>&) noexcept {}  // NOLINT: what an allocator has to have

    T* allocate(std::size_t n) {
        if (n > static_cast<std::size_t>(-1) / 2 / sizeof(T)) throw std::bad_array_new_length();
        return static_cast<T*>(take_memory(n * sizeof(T)));
    }
    void deallocate(T* memory, std::size_t n) noexcept { give_memory(memory, n * sizeof(T)); }
};

}  // namespace unmix
