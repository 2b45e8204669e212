// The shrink of the subject area: as VlxShrink, with radii of its own.
//
// Input 0: alpha. Horizontal radius "Shrink Subject Overlay ", vertical radius the control block's
// subjectShrinkV. Hashes both values. Rows may be made on any thread.
#pragma once

#include "screen/VlxShrink.h"

class VlxShrinkS final : public VlxFilter_t<VlxShrinkH, VlxShrinkV> {
  public:
    VlxShrinkS(const NodeContext& context, const ControlBlock* controls)
        : VlxFilter_t(context, controls,
                      {.class_name = "VlxShrinkS",
                       .inputs = {{kMaskAlpha}},
                       .hashed = {controls::kShrinkSubjectOverlay}}) {}

    void setup() override {
        Zo::Image::Hash hash = state();
        hash.append(controls().subjectShrinkV);
        invalidate(hash);
    }
    void configure() override {
        horizontal().set_radius(controls().get(controls::kShrinkSubjectOverlay));
        vertical().set_radius(controls().subjectShrinkV);
    }
};
