#include "screen/VlxBlurCU.h"

using namespace Zo::Image;

void VlxBlurCU::setup() {
    Hash hash;
    append(hash, {controls::kCleanUpBlur, controls::kCUBlurV});
    append_input(hash, 0);
    invalidate(hash);
}

void VlxBlurCU::configure() {
    horizontal().set_radius(controls().get(controls::kCleanUpBlur));
    vertical().set_radius(controls().get(controls::kCUBlurV));
}
