#include "screen/VlxShadowBlur.h"

using namespace Zo::Image;

void VlxShadowBlur::setup() {
    Hash hash;
    append(hash, {controls::kShadowBlur, controls::kShadowBlurV});
    append_input(hash, 0);
    invalidate(hash);
}

void VlxShadowBlur::configure() {
    horizontal().set_radius(controls().get(controls::kShadowBlur));
    vertical().set_radius(controls().get(controls::kShadowBlurV));
}
