#include "render/Proxy.h"

#include <algorithm>
#include <vector>

namespace veloxa::viewer {

using namespace Zo::Image;

namespace {

int down(int value, int scale) {
    return value >= 0 ? value / scale : -((-value + scale - 1) / scale);
}

int up(int value, int scale) {
    return -down(-value, scale);
}

// Adds a row's pixels up in the columns of the stand-in that they fall on.
void add_row(const float* from, const Box& box, int scale, int left, std::vector<float>& sums) {
    for (int x = box.x; x < box.r;) {
        const int column = down(x, scale);
        const int end = std::min(box.r, (column + 1) * scale);
        float sum = 0.0f;
        for (; x < end; ++x) sum += *from++;
        sums[static_cast<std::size_t>(column - left)] += sum;
    }
}

void shrink_plane(const Image& image, Channel c, int scale, Image& small) {
    const Box& from = image.info.box;
    const Box& to = small.info.box;
    std::vector<float> sums(small.width());
    for (int y = to.y; y < to.t; ++y) {
        std::ranges::fill(sums, 0.0f);
        const int first = std::max(from.y, y * scale);
        const int end = std::min(from.t, (y + 1) * scale);
        for (int row = first; row < end; ++row) add_row(image.line(c, row), from, scale, to.x, sums);
        float* const line = small.line(c, y);
        for (int x = to.x; x < to.r; ++x) {
            const int columns = std::min(from.r, (x + 1) * scale) - std::max(from.x, x * scale);
            line[x - to.x] =
                sums[static_cast<std::size_t>(x - to.x)] / static_cast<float>(columns * (end - first));
        }
    }
}

}  // namespace

Box shrunk(const Box& box, int scale) {
    return {down(box.x, scale), down(box.y, scale), up(box.r, scale), up(box.t, scale)};
}

std::shared_ptr<const Image> shrunk(const Image& image, int scale) {
    Info info = image.info;
    info.box = shrunk(info.box, scale);
    info.format.box = shrunk(info.format.box, scale);
    auto small = std::make_shared<Image>(info);
    for (const Channel c : kMaskRgba) {
        if (!image.has(c)) continue;
        // A grey file has one plane for its three colours.
        const auto same = [&](Channel other) { return other < c && image.plane(other) == image.plane(c); };
        const Channel shared = same(kRed) ? kRed : same(kGreen) ? kGreen : c;
        if (shared != c) {
            small->plane(c) = small->plane(shared);
        } else {
            shrink_plane(image, c, scale, *small);
        }
    }
    return small;
}

void shrink_knobs(KnobPanel& panel, int scale) {
    for (const auto& knob : panel.knobs()) {
        if (!knob->flag(kKnobPixels) || knob->kind() == Knob::Kind::kLink) continue;
        bool changed = false;
        for (int i = 0; i < knob->value_count(); ++i) {
            const double value = knob->get_value(i);
            if (value != 0.0) changed = knob->set_value(value / scale, i) || changed;
        }
        if (changed) knob->changed();
    }
}

}  // namespace veloxa::viewer
