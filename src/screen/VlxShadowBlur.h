// The shadow blur: softens the shadow density before it is combined with the matte.
//
// Input 0: alpha, 255 = full shadow. Radii "Shadow Blur " and "ShadowBlurV", in pixels; hashes both. Rows may
// be made on any thread.
#pragma once

#include "framework/VlxBlur.h"
#include "framework/VlxFilter_t.h"

class VlxShadowBlur final : public VlxFilter_t<VlxBlurH, VlxBlurV> {
  public:
    VlxShadowBlur(const NodeContext& context, const ControlBlock* controls)
        : VlxFilter_t(context, controls,
                      {.class_name = "VlxShadowBlur",
                       .inputs = {{kMaskAlpha}},
                       .hashed = {controls::kShadowBlur, controls::kShadowBlurV}}) {}

    void configure() override {
        horizontal().set_radius(controls().get(controls::kShadowBlur));
        vertical().set_radius(controls().get(controls::kShadowBlurV));
    }
};
