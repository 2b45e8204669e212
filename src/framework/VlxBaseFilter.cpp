#include "framework/VlxBaseFilter.h"

#include <algorithm>
#include <cstdint>
#include <typeinfo>

using namespace Zo::Image;

namespace {

// Radii come from the user as they are; boxes stay such that their width fits an int.
constexpr int kFarthest = (1 << 30) - 1;

int down_from(int edge, int by) {
    const std::int64_t limit = std::min(edge, -kFarthest);
    return static_cast<int>(std::max(std::int64_t{edge} - by, limit));
}

int up_from(int edge, int by) {
    const std::int64_t limit = std::max(edge, kFarthest);
    return static_cast<int>(std::min(std::int64_t{edge} + by, limit));
}

}  // namespace

const char* VlxBaseFilter::class_name() const {
    return typeid(*this).name();
}

void VlxBaseFilter::_validate(bool /*for_real*/) {
    copy_info();
    if (radius_ <= 0) {
        set_out_channels(kMaskNone);
        return;
    }
    set_out_channels(kMaskAll);
    if (!info_.box.empty()) info_.box = grown(info_.box);
}

void VlxBaseFilter::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    const Box box = grown({x, y, r, t});
    input(0).request(box.x, box.y, box.r, box.t, channels, count);
}

Box VlxBaseFilter::grown(Box box) const {
    const int by = std::max(radius_, 0);
    if (horizontal()) {
        box.x = down_from(box.x, by);
        box.r = up_from(box.r, by);
    } else {
        box.y = down_from(box.y, by);
        box.t = up_from(box.t, by);
    }
    return box;
}

int VlxBaseFilter::reach(int x, int r) const {
    const Box& box = input(0).info().box;
    const std::int64_t farthest = std::max(std::int64_t{box.r} - x, std::int64_t{r} - box.x);
    return static_cast<int>(std::min<std::int64_t>(radius_, farthest));
}

Box VlxBaseFilter::rows_around(int y, int radius, int x, int r) const {
    const Box& box = input(0).info().box;
    const int first = std::clamp(down_from(y, radius), box.y, box.t - 1);
    const int last = std::clamp(up_from(y, radius), box.y, box.t - 1);
    return {x, first, r, last + 1};
}
