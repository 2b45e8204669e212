#include "screen/VlxSmartInterpol.h"

#include <algorithm>

#include "ZoImage/GeneralTile.h"
#include "screen/SmartInterpolKernel.h"

using namespace Zo::Image;

void VlxSmartInterpol::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    VlxFilter::_request(x, y, r, t, channels, count);
    const Box& box = info_.box;
    input(1).request(box.x, box.y, box.r, box.t, kMaskAlpha, count);
    input(1).read_ahead(kMaskAlpha);
}

bool VlxSmartInterpol::compute_frame(Lock& lock) {
    const Box& box = info_.box;
    const auto width = static_cast<std::size_t>(box.width());
    const std::array channels{kRed, kGreen, kBlue};
    std::array<float*, 3> planes{};
    for (std::size_t k = 0; k < channels.size(); ++k) {
        frame(channels[k]).resize(width * static_cast<std::size_t>(box.height()));
        planes[k] = frame(channels[k]).data();
    }
    SmartInterpol interpol(box.width(), box.height());
    const std::array<RowSource, 2> sources{{{&input(1), kMaskAlpha}, {&input(0), kMaskRgb}}};
    const auto keep = [&](std::size_t source, int y, const Row& row) {
        if (source == 0) {
            interpol.add_row(y - box.y, row[kAlpha]);
            return;
        }
        const std::size_t at = static_cast<std::size_t>(y - box.y) * width;
        for (std::size_t k = 0; k < channels.size(); ++k)
            std::copy_n(row[channels[k]], width, planes[k] + at);
    };
    if (!fetch_rows(sources, box, &lock, keep)) return false;
    const SmartInterpolParams params = smart_interpol_params(controls());
    return run_kernel(*this, lock, [&](const ParallelLoop& loop) { interpol.run(params, planes, loop); });
}
