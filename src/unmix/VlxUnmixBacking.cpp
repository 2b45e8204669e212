#include "unmix/VlxUnmixBacking.h"

#include "unmix/BackingFit.h"
#include "unmix/Light.h"
#include "unmix/Reduce.h"

using namespace Zo::Image;

const char* VlxUnmixBacking::input_label(int input, char* buffer) const {
    return input == 1 ? "cp" : input == 2 ? "gm" : buffer;
}

void VlxUnmixBacking::append_params(Hash& hash) const {
    hash.append(params().screen);
    hash.append(static_cast<std::int32_t>(params().encoding));
    hash.append(static_cast<double>(params().folds));
    append_colours(hash, params().backing);
    append_shot(hash);
}

bool VlxUnmixBacking::compute(Lock& helpers) {
    const Box& box = info_.box;
    unmix::BackingModel& model = model_;
    model.cubic.reset();
    model.gain = {1.0f, 1.0f, 1.0f};
    model.scale = unmix::FrameScale(box.width(), box.height());
    model.screen = params().screen;
    model.others = {params().screen == 0 ? 1 : 0, params().screen == 2 ? 1 : 2};
    if (input_op(1) == nullptr) model.clean = model.added = {};
    if (!unmix::read_light(input(0), box, params().encoding, model.light, helpers)) return false;
    if (input_op(1) != nullptr &&
        !unmix::read_light(input(1), box, params().encoding, model.clean, helpers)) {
        return false;
    }
    unmix::Floats garbage;
    if (!read_matte(2, garbage, helpers)) return false;

    const auto taught = colours_in_light(params().backing);
    return run_kernel(*this, helpers, [&](const ParallelLoop& loop) {
        for (std::size_t c = 0; c < 3; ++c) {
            unmix::cell_means(model.light[c], model.scale.fine(), model.fine[c], loop);
            unmix::cell_means(model.fine[c], 2, model.means[c], loop);
        }
        unmix::Floats outside;
        if (!garbage.empty()) unmix::cell_means(garbage, model.scale.coarse(), outside, loop);
        unmix::fit_backing(model, outside, {params().folds, taught, params().shot.get()}, loop);
    });
}

void VlxUnmixBacking::show(int y, int x, ChannelSet channels, Row& row) {
    const int r = x + static_cast<int>(row.width());
    std::array<std::vector<float>, 3> lines;
    std::array<float*, 3> out{};
    for (std::size_t c = 0; c < 3; ++c) {
        lines[c].resize(row.width());
        out[c] = lines[c].data();
    }
    model_.row(y, x, r, out);
    std::size_t c = 0;
    for (const Channel channel : kMaskRgb) {
        if (channels.has(channel)) std::copy_n(out[c], row.width(), row.overwrite(channel));
        ++c;
    }
    if (!channels.has(kAlpha)) return;
    float* const alpha = row.overwrite(kAlpha);
    const int side = model_.scale.coarse();
    for (int n = x; n < r; ++n) alpha[n - x] = static_cast<float>(model_.sure(n / side, y / side));
}
