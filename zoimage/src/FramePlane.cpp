#include "ZoImage/FramePlane.h"

#ifdef __linux__
#include <sys/mman.h>
#endif

#include <cstdlib>

namespace Zo::Image {

namespace {

constexpr std::size_t kLargePage = std::size_t{1} << 21U;
constexpr std::size_t kCacheLine = 64;

}  // namespace

void* allocate_frame(std::size_t bytes) {
    const bool large = bytes >= 2 * kLargePage;
    const std::size_t unit = large ? kLargePage : kCacheLine;
    const std::size_t size = (bytes + unit - 1) / unit * unit;
    void* memory = std::aligned_alloc(unit, size);
    if (memory == nullptr) throw std::bad_alloc();
#ifdef __linux__
    // A wish: without large pages everything works, more slowly.
    if (large) madvise(memory, size, MADV_HUGEPAGE);
#endif
    return memory;
}

void free_frame(void* memory) noexcept {
    std::free(memory);
}

}  // namespace Zo::Image
