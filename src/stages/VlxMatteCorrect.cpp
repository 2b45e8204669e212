#include "stages/VlxMatteCorrect.h"

#include <algorithm>

#include "ZoImage/GeneralTile.h"
#include "stages/MatteCorrectKernel.h"

using namespace Zo::Image;

bool VlxMatteCorrect::is_active() const {
    return controls().get(controls::kEdgeKernel) >= 1;
}

void VlxMatteCorrect::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    VlxFilter::_request(x, y, r, t, channels, count);
    const Box& box = info_.box;
    if (!is_active()) return;
    input(1).request(box.x, box.y, box.r, box.t, kMaskAlpha, count);
    input(1).read_ahead(kMaskAlpha);
}

bool VlxMatteCorrect::compute_frame(Lock& lock) {
    const Box& box = info_.box;
    const auto width = static_cast<std::size_t>(box.width());
    FramePlane<float> matte(width * static_cast<std::size_t>(box.height()));
    FramePlane<float>& result = frame(kAlpha);
    result.resize(matte.size());

    // With screen correction off both inputs are the same image. Else the result's plane holds the pre-matte
    // until the result comes.
    const bool shared = input_op(1) == input_op(0);
    const std::array<RowSource, 2> sources{{{&input(0), kMaskAlpha}, {&input(1), kMaskAlpha}}};
    const auto keep = [&](std::size_t source, int y, const Row& row) {
        FramePlane<float>& plane = source == 0 ? matte : result;
        std::copy_n(row[kAlpha], width, plane.data() + static_cast<std::size_t>(y - box.y) * width);
    };
    if (!fetch_rows({sources.data(), shared ? 1U : 2U}, box, &lock, keep)) return false;

    const auto limit = mode_ == 0 ? MatteLimit::kAbove : MatteLimit::kBelow;
    const std::int32_t radius = controls().get(controls::kEdgeKernel);
    return run_kernel(*this, lock, [&](const ParallelLoop& loop) {
        matte_correct(limit, radius, box.width(), box.height(), matte.data(),
                      shared ? matte.data() : result.data(), result.data(), loop);
    });
}
