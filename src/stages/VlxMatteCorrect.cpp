#include "stages/VlxMatteCorrect.h"

#include "ZoImage/GeneralTile.h"
#include "stages/MatteCorrectKernel.h"

using namespace Zo::Image;

const char* VlxMatteCorrect::input_label(int input, char* buffer) const {
    if (input == 0) return "";
    if (input == 1) return "PreMatte";
    return buffer;
}

void VlxMatteCorrect::setup() {
    Hash hash;
    append(hash, {controls::kEdgeKernel, controls::kKernelHeight});
    append_input(hash, 0);
    append_input(hash, 1);
    invalidate(hash);
}

bool VlxMatteCorrect::is_active() const {
    return controls().get(controls::kEdgeKernel) >= 1;
}

void VlxMatteCorrect::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    VlxFilter::_request(x, y, r, t, channels, count);
    const Box& box = info_.box;
    if (is_active()) input(1).request(box.x, box.y, box.r, box.t, kMaskAlpha, count);
}

bool VlxMatteCorrect::compute_frame(Lock& lock) {
    const Box& box = info_.box;
    const RawGeneralTile matte(input(0), box, kMaskAlpha, &lock);
    if (!matte.valid() || aborted()) return false;
    // With screen correction off both inputs are the same image.
    const bool shared = input_op(1) == input_op(0);
    const RawGeneralTile other(input(1), shared ? Box{} : box, kMaskAlpha, &lock);
    if (!other.valid() || aborted()) return false;
    const RawGeneralTile& pre_matte = shared ? matte : other;

    std::vector<float>& result = frame(kAlpha);
    result.resize(matte.plane(kAlpha).size());
    const auto limit = mode_ == 0 ? MatteLimit::kAbove : MatteLimit::kBelow;
    const std::int32_t radius = controls().get(controls::kEdgeKernel);
    return run_kernel(lock, [&](const ParallelLoop& loop) {
        matte_correct(limit, radius, box.width(), box.height(), matte.plane(kAlpha).data(),
                      pre_matte.plane(kAlpha).data(), result.data(), loop);
    });
}
