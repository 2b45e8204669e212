// The clean-up blur: softens the matte before the clean-up.
//
// Input 0: alpha. Radii "Clean-up Blur " and "CUBlurV", in pixels; hashes both. Rows may be made on any
// thread.
#pragma once

#include "framework/VlxBlur.h"
#include "framework/VlxFilter_t.h"

class VlxBlurCU final : public VlxFilter_t<VlxBlurH, VlxBlurV> {
  public:
    VlxBlurCU(const NodeContext& context, const ControlBlock* controls)
        : VlxFilter_t(context, controls,
                      {.class_name = "VlxBlurCU",
                       .inputs = {{kMaskAlpha}},
                       .hashed = {controls::kCleanUpBlur, controls::kCUBlurV}}) {}

    void configure() override {
        horizontal().set_radius(controls().get(controls::kCleanUpBlur));
        vertical().set_radius(controls().get(controls::kCUBlurV));
    }
};
