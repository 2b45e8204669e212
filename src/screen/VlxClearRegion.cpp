#include "screen/VlxClearRegion.h"

#include "screen/ClearRegionKernel.h"

using namespace Zo::Image;

namespace {

// Inputs 1 to 3 with the control that says whether each is in use, and what is read of it.
struct OptionalInput {
    int input;
    int control;
    ChannelSet channels;
};
constexpr OptionalInput kPlate{1, controls::kCleanPlate, kMaskRgb};
constexpr OptionalInput kGarbageMatte{2, controls::kGarbage, kMaskAlpha};
constexpr OptionalInput kHoldoutMatte{3, controls::kHoldout, kMaskAlpha};
constexpr OptionalInput kOptionalInputs[] = {kPlate, kGarbageMatte, kHoldoutMatte};

}  // namespace

void VlxClearRegion::setup() {
    Hash hash;
    append(hash, controls::kBackingColor);
    append(hash, controls::kScreenTolerance);
    append(hash, {controls::kCleanPlate, controls::kHoldout, controls::kGarbage, controls::kRotoBrightsGR,
                  controls::kRotoDarksGR, controls::kRotoBrightsRG, controls::kRotoDarksRG});
    append_input(hash, 0);
    for (const OptionalInput& o : kOptionalInputs) {
        if (controls().get(o.control) != 0) append_input(hash, o.input);
    }
    invalidate(hash);
}

void VlxClearRegion::_validate(bool /*for_real*/) {
    validate_writing(kMaskAlpha, kMaskAlpha);
}

void VlxClearRegion::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    input(0).request(x, y, r, t, channels + kMaskRgba, count);
    for (const OptionalInput& o : kOptionalInputs) {
        if (controls().get(o.control) != 0) input(o.input).request(x, y, r, t, o.channels, count);
    }
}

void VlxClearRegion::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    if (!channels.has(kAlpha)) {
        row.get(input(0), y, channels);
        return;
    }
    const auto in_use = [&](const OptionalInput& o) { return controls().get(o.control) != 0; };
    Row fg(x, r);
    fg.get(input(0), y, channels + kMaskRgba);
    Row plate(x, r);
    Row garbage(x, r);
    Row holdout(x, r);
    if (in_use(kPlate)) plate.get(input(kPlate.input), y, kPlate.channels);
    if (in_use(kGarbageMatte)) garbage.get(input(kGarbageMatte.input), y, kGarbageMatte.channels);
    if (in_use(kHoldoutMatte)) holdout.get(input(kHoldoutMatte.input), y, kHoldoutMatte.channels);

    const auto roles = role_channels(controls());
    const RolePixels plate_pixels = role_pixels(plate, roles);
    const ClearRegionMattes mattes{in_use(kHoldoutMatte) ? holdout[kAlpha] : nullptr,
                                   in_use(kPlate) ? fg[kAlpha] : nullptr,
                                   in_use(kGarbageMatte) ? garbage[kAlpha] : nullptr};
    row.share(fg, channels - kMaskAlpha);
    clear_region(clear_region_params(controls()), role_pixels(fg, roles),
                 in_use(kPlate) ? &plate_pixels : nullptr, mattes, row.overwrite(kAlpha), row.width());
}
