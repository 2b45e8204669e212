#include "screen/VlxSmartInterpol.h"

#include "ZoImage/GeneralTile.h"
#include "screen/SmartInterpolKernel.h"

using namespace Zo::Image;

const char* VlxSmartInterpol::input_label(int input, char* buffer) const {
    if (input == 1) return "PreMatte";
    return buffer;
}

void VlxSmartInterpol::setup() {
    Hash hash;
    append(hash, controls::kBackingColor);
    append_input(hash, 0);
    append_input(hash, 1);
    invalidate(hash);
}

void VlxSmartInterpol::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    VlxFilter::_request(x, y, r, t, channels, count);
    const Box& box = info_.box;
    input(1).request(box.x, box.y, box.r, box.t, kMaskAlpha, count);
}

bool VlxSmartInterpol::compute_frame(Lock& lock) {
    const Box& box = info_.box;
    const RawGeneralTile clear(input(1), box, kMaskAlpha, &lock);
    if (!clear.valid() || aborted()) return false;
    const RawGeneralTile image(input(0), box, kMaskRgb, &lock);
    if (!image.valid() || aborted()) return false;

    std::array<float*, 3> out{};
    for (std::size_t k = 0; k < 3; ++k) {
        std::vector<float>& plane = frame(static_cast<Channel>(kRed + static_cast<int>(k)));
        plane.resize(clear.plane(kAlpha).size());
        out[k] = plane.data();
    }
    const SmartInterpolParams params = smart_interpol_params(controls());
    return run_kernel(lock, [&](const ParallelLoop& loop) {
        smart_interpol(params, box.width(), box.height(), clear.plane(kAlpha).data(),
                       {image.plane(kRed).data(), image.plane(kGreen).data(), image.plane(kBlue).data()}, out,
                       loop);
    });
}
