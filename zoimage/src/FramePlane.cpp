#include "ZoImage/FramePlane.h"

#include <sys/mman.h>

#include <cstdint>

namespace Zo::Image {

namespace {

constexpr std::size_t kLine = 64;
constexpr std::size_t kPage = 4096;
constexpr std::size_t kLargePage = std::size_t{1} << 21U;

bool is_large(std::size_t bytes) {
    return bytes >= kLargePage;
}

std::size_t round_up(std::size_t bytes, std::size_t to) {
    return (bytes + to - 1) / to * to;
}

}  // namespace

std::size_t frame_size(std::size_t bytes) {
    if (!is_large(bytes)) return round_up(bytes, kLine);
    const std::size_t large = round_up(bytes, kLargePage);
    return large - bytes <= bytes / 8 ? large : round_up(bytes, kPage);
}

// Large ones straight from the system, for the heap gives no large pages: with those a plane costs a few
// faults when it is first written instead of thousands. Where they are refused nothing is lost.
void* allocate_frame(std::size_t bytes) {
    const std::size_t size = frame_size(bytes);
    if (!is_large(bytes)) return ::operator new (size, std::align_val_t{kLine});
    const std::size_t slack = kLargePage - kPage;
    void* const all = mmap(nullptr, size + slack, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (all == MAP_FAILED) throw std::bad_alloc();
    auto* const start = static_cast<std::byte*>(all);
    const std::size_t before = round_up(reinterpret_cast<std::uintptr_t>(start), kLargePage) -
                               reinterpret_cast<std::uintptr_t>(start);
    std::byte* const memory = start + before;
    if (before != 0) munmap(start, before);
    if (before != slack) munmap(memory + size, slack - before);
    madvise(memory, size, MADV_HUGEPAGE);
    return memory;
}

void free_frame(void* memory, std::size_t bytes) noexcept {
    if (is_large(bytes)) {
        munmap(memory, frame_size(bytes));
    } else {
        ::operator delete (memory, std::align_val_t{kLine});
    }
}

}  // namespace Zo::Image
