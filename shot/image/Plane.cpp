#include "shot/image/Plane.h"

#include <sys/mman.h>

#include <limits>
#include <new>

namespace veloxa {

namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;
constexpr std::size_t kLarge = 2 * kHugePage;

}  // namespace

Plane make_plane(std::size_t pixels) {
    if (pixels < kLarge / sizeof(float)) return std::make_shared_for_overwrite<float[]>(pixels);
    if (pixels > std::numeric_limits<std::size_t>::max() / (2 * sizeof(float))) throw std::bad_alloc();
    // One huge page more than needed, so that the plane can start at one.
    const std::size_t size = pixels * sizeof(float) + kHugePage;
    void* const mapped = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) throw std::bad_alloc();
    void* start = mapped;
    std::size_t space = size;
    std::align(kHugePage, pixels * sizeof(float), start, space);
    ::madvise(start, pixels * sizeof(float), MADV_HUGEPAGE);  // a kernel without them serves small pages
    return {static_cast<float*>(start), [mapped, size](float*) { ::munmap(mapped, size); }};
}

}  // namespace veloxa
