#include "PlaneStore.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <new>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace Zo::Image {

namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kLargePage = std::size_t{1} << 21U;

std::size_t round_up(std::size_t bytes, std::size_t to) {
    return (bytes + to - 1) / to * to;
}

#ifdef __linux__

// Straight from the system, for the heap gives no large pages: with those a plane costs a few faults when it
// is first written instead of thousands. Where they are refused nothing is lost.
std::byte* allocate(std::size_t bytes) {
    const std::size_t slack = bytes >= kLargePage ? kLargePage - kPage : 0;
    void* all = mmap(nullptr, bytes + slack, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (all == MAP_FAILED) throw std::bad_alloc();
    auto* data = static_cast<std::byte*>(all);
    if (slack == 0) return data;
    const std::size_t before =
        (kLargePage - reinterpret_cast<std::uintptr_t>(data) % kLargePage) % kLargePage;
    if (before != 0) munmap(data, before);
    if (before != slack) munmap(data + before + bytes, slack - before);
    data += before;
    madvise(data, bytes, MADV_HUGEPAGE);
    return data;
}

void release(std::byte* data, std::size_t bytes) {
    munmap(data, bytes);
}

#else

std::byte* allocate(std::size_t bytes) {
    return static_cast<std::byte*>(::operator new (bytes, std::align_val_t{kPage}));
}

void release(std::byte* data, std::size_t /*bytes*/) {
    ::operator delete (data, std::align_val_t{kPage});
}

#endif

}  // namespace

std::size_t PlaneStore::size_of_plane(std::size_t bytes) {
    const std::size_t large = round_up(bytes, kLargePage);
    return large - bytes <= bytes / 8 ? large : round_up(bytes, kPage);
}

PlaneStore::Plane PlaneStore::take(std::size_t bytes) {
    bytes = size_of_plane(bytes);
    // Last given back, first used: it may still be in the processor's cache.
    const auto same =
        std::find_if(spare_.rbegin(), spare_.rend(), [&](const auto& s) { return s.second == bytes; });
    if (same != spare_.rend()) {
        std::byte* data = same->first;
        spare_.erase(std::next(same).base());
        used_ += bytes;
        return {this, data, bytes};
    }
    assert(used_ + bytes <= budget_);
    while (!spare_.empty() && bytes_.load() + bytes > budget_) {
        bytes_ -= spare_.front().second;
        release(spare_.front().first, spare_.front().second);
        spare_.erase(spare_.begin());
    }
    std::byte* data = allocate(bytes);
    bytes_ += bytes;
    used_ += bytes;
    return {this, data, bytes};
}

void PlaneStore::give_back(std::byte* data, std::size_t bytes) {
    used_ -= bytes;
    spare_.emplace_back(data, bytes);
}

void PlaneStore::trim() {
    for (const auto& [data, bytes] : spare_) {
        bytes_ -= bytes;
        release(data, bytes);
    }
    spare_.clear();
}

}  // namespace Zo::Image
