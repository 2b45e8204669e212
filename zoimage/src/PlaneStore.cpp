#include "PlaneStore.h"

#include <algorithm>
#include <cassert>

#include "ZoImage/FramePlane.h"

namespace Zo::Image {

PlaneStore::Plane PlaneStore::take(std::size_t bytes) {
    bytes = frame_size(bytes);
    // Last given back, first used: it may still be in the processor's cache.
    const auto same =
        std::find_if(spare_.rbegin(), spare_.rend(), [&](const auto& s) { return s.second == bytes; });
    std::byte* data = nullptr;
    if (same != spare_.rend()) {
        data = same->first;
        spare_.erase(std::next(same).base());
    } else {
        assert(used_ + bytes <= budget());
        trim(budget() - bytes);
        data = static_cast<std::byte*>(allocate_frame(bytes));
        bytes_ += bytes;
    }
    used_ += bytes;
    return Plane(data, {this, bytes});
}

void PlaneStore::give_back(std::byte* data, std::size_t bytes) {
    used_ -= bytes;
    spare_.emplace_back(data, bytes);
}

// What was given back first goes first.
void PlaneStore::trim(std::size_t bytes) {
    auto gone = spare_.begin();
    for (; gone != spare_.end() && bytes_ > bytes; ++gone) {
        bytes_ -= gone->second;
        free_frame(gone->first, gone->second);
    }
    spare_.erase(spare_.begin(), gone);
}

}  // namespace Zo::Image
