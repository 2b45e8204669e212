// The shrink of the subject area: as VlxShrink, with radii of its own.
//
// Input 0: alpha. Horizontal radius "Shrink Subject Overlay ", vertical radius the control block's
// subjectShrinkV. Hashes both values.
#pragma once

#include "screen/VlxShrink.h"

class VlxShrinkS final : public VlxFilter_t<VlxShrinkH, VlxShrinkV> {
  public:
    using VlxFilter_t::VlxFilter_t;

    const char* class_name() const override { return "VlxShrinkS"; }
    void setup() override;
    void configure() override;
};
