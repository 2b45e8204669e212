// The shadow blur: softens the shadow density before it is combined with the matte.
//
// Input 0: alpha, 255 = full shadow. Radii "Shadow Blur " and "ShadowBlurV", in pixels; hashes both.
#pragma once

#include "framework/VlxBlur.h"
#include "framework/VlxFilter_t.h"

class VlxShadowBlur final : public VlxFilter_t<VlxBlurH, VlxBlurV> {
  public:
    using VlxFilter_t::VlxFilter_t;

    const char* class_name() const override { return "VlxShadowBlur"; }
    void setup() override;
    void configure() override;
};
