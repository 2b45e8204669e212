// Limits the matte at one end of its range while keeping its local gradients; see MatteCorrectKernel.h.
//
// Input 0: alpha = the matte. Input 1 "PreMatte": alpha above 0 where the pixel is certain backing; such
// pixels keep their matte. Mode 0 limits to 255 from above, mode 1 to 0 from below.
// Output: alpha corrected, all else as it came. With "Edge Kernel" (pixels) below 1 the input as it is.
// Reads "Edge Kernel"; hashes it and "KernelHeight". A whole-frame operator. The frame is made once, by the
// threads that wait for it; its rows serve any thread.
#pragma once

#include "framework/VlxFilter.h"

class VlxMatteCorrect final : public VlxFilter {
  public:
    VlxMatteCorrect(const NodeContext& context, const ControlBlock* controls, int mode)
        : VlxFilter(context, controls,
                    {.class_name = "VlxMatteCorrect",
                     .inputs = {{kMaskAlpha, ""}, {kMaskAlpha, "PreMatte"}},
                     .hashed = {controls::kEdgeKernel, controls::kKernelHeight}},
                    kMaskAlpha),
          mode_(mode) {}

  protected:
    bool is_active() const override;
    bool compute_frame(Zo::Image::Lock& lock) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;

  private:
    int mode_;
};
