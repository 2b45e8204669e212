// A clean plate made from the shot itself; see SmartInterpolKernel.h.
//
// Input 0: the clean plate or the foreground, red, green, blue on the working scale. Input 1 "PreMatte":
// alpha not 0 where the backing is clear. Output: red, green, blue as if the subject were not there; all
// else as it came from input 0.
// Reads "Backing Color", "ColorIndex"; hashes the first. A whole-frame operator. The frame is made once, by
// the threads that wait for it; its rows serve any thread.
#pragma once

#include "framework/VlxFilter.h"

class VlxSmartInterpol final : public VlxFilter {
  public:
    VlxSmartInterpol(const NodeContext& context, const ControlBlock* controls)
        : VlxFilter(context, controls,
                    {.class_name = "VlxSmartInterpol",
                     .inputs = {{kMaskRgb}, {kMaskAlpha, "PreMatte"}},
                     .hashed = {controls::kBackingColor},
                     .unhashed = {controls::kColorIndex}},
                    kMaskRgb) {}

  protected:
    bool compute_frame(Zo::Image::Lock& lock) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
};
