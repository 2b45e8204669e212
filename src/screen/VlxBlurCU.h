// The clean-up blur: softens the matte before the clean-up.
//
// Input 0: alpha. Radii "Clean-up Blur " and "CUBlurV", in pixels; hashes both.
#pragma once

#include "framework/VlxBlur.h"
#include "framework/VlxFilter_t.h"

class VlxBlurCU final : public VlxFilter_t<VlxBlurH, VlxBlurV> {
  public:
    using VlxFilter_t::VlxFilter_t;

    const char* class_name() const override { return "VlxBlurCU"; }
    void setup() override;
    void configure() override;
};
