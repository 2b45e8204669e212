#include "unmix/UnmixStage.h"

#include "unmix/EncodingKernel.h"
#include "unmix/Light.h"
#include "unmix/ShotModel.h"

using namespace Zo::Image;

void UnmixStage::setup() {
    Hash hash;
    append_params(hash);
    for (int n = 0; n < inputs(); ++n) {
        if (const Op* op = input_op(n); op != nullptr) {
            hash.append(n);
            hash.append(op->hash());
        }
    }
    invalidate(hash);
}

void UnmixStage::append_colours(Hash& hash, const std::vector<TaughtColour>& colours) {
    hash.append(static_cast<std::uint64_t>(colours.size()));
    for (const TaughtColour& taught : colours) {
        for (const float v : taught.colour) hash.append(static_cast<double>(v));
        hash.append(static_cast<double>(taught.alpha));
    }
}

void UnmixStage::append_shot(Hash& hash) const {
    hash.append(params().shot ? params().shot->identity : std::uint64_t{0});
}

std::vector<std::array<float, 3>> UnmixStage::colours_in_light(
    const std::vector<TaughtColour>& colours) const {
    std::vector<std::array<float, 3>> light;
    for (const TaughtColour& taught : colours) {
        light.push_back(taught.colour);
        to_light(params().encoding, taught.colour.data(), light.back().data(), 3);
    }
    return light;
}

bool UnmixStage::read_matte(int n, unmix::Floats& matte, Lock& helpers) const {
    return input_op(n) == nullptr || unmix::read_matte(input(n), info_.box, matte, helpers);
}

bool UnmixStage::make(Lock& helpers) {
    return once_.ensure([&](Lock&) { return compute(helpers); });
}

void UnmixStage::_validate(bool /*for_real*/) {
    copy_info();
    set_out_channels(kMaskRgba);
    info_.channels += kMaskRgba;
    once_.forget();
}

void UnmixStage::_close() {
    once_.forget();
    Iop::_close();
}

void UnmixStage::_request(int /*x*/, int /*y*/, int /*r*/, int /*t*/, ChannelSet /*channels*/, int count) {
    const Box& box = info_.box;
    hold(bytes_for(static_cast<std::size_t>(box.width()) * static_cast<std::size_t>(box.height())));
    for (int n = 0; n < inputs(); ++n) {
        if (input_op(n) != nullptr) input(n).request(box.x, box.y, box.r, box.t, kMaskRgba, count);
    }
}

void UnmixStage::engine(int y, int x, int /*r*/, const ChannelSet& channels, Row& row) {
    if (!channels.intersects(kMaskRgba)) {
        row.get(input(0), y, channels);
        return;
    }
    if (!once_.ensure([this](Lock& lock) { return compute(lock); }) || aborted()) return;
    row.get(input(0), y, channels - kMaskRgba);
    show(y - info_.box.y, x - info_.box.x, channels & kMaskRgba, row);
}
