#include "unmix/VlxUnmixClean.h"

#include "unmix/CleanFrame.h"
#include "unmix/Islands.h"
#include "unmix/VlxUnmixBacking.h"
#include "unmix/VlxUnmixSolids.h"
#include "unmix/VlxUnmixSolve.h"

using namespace Zo::Image;

const char* VlxUnmixClean::input_label(int input, char* buffer) const {
    return input == 1 ? "gm" : input == 2 ? "hm" : buffer;
}

void VlxUnmixClean::append_params(Hash& hash) const {
    hash.append(static_cast<double>(params().denoise));
    hash.append(static_cast<double>(params().detail));
}

bool VlxUnmixClean::compute(Lock& helpers) {
    if (!backing_.make(helpers) || !solids_.make(helpers) || !solve_.make(helpers)) return false;
    unmix::Floats garbage;
    unmix::Floats holdout;
    if (!read_matte(1, garbage, helpers) || !read_matte(2, holdout, helpers)) return false;
    const unmix::FrameScale& scale = backing_.model().scale;
    return run_kernel(*this, helpers, [&](const ParallelLoop& loop) {
        unmix::clean_frame(scale, solids_.segmentation(), solve_.solution(),
                           {params().denoise, params().detail}, alpha_, loop);
        if (params().denoise > 0.0f) unmix::drop_marks(scale, solids_.segmentation(), alpha_, loop);
        unmix::fill_holes(scale, alpha_, loop);
        loop(0, alpha_.height(), 16, [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                float* const alpha = alpha_.row(y);
                for (int x = 0; !holdout.empty() && x < alpha_.width(); ++x) {
                    alpha[x] = std::max(alpha[x], holdout(x, y));
                }
                for (int x = 0; !garbage.empty() && x < alpha_.width(); ++x) alpha[x] *= 1.0f - garbage(x, y);
            }
        });
    });
}

void VlxUnmixClean::show(int y, int x, ChannelSet channels, Row& row) {
    for (const Channel channel : channels) row.refer(channel, alpha_.row(y) + x);
}
