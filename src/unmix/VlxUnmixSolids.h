// What is surely opaque, what may lend its colours, and what has to be solved.
//
// Input 0 the backing, 1 "gm" garbage matte, 2 "hm" holdout matte (either may be missing), as the host
// delivers them: alpha above a half is surely outside, or surely subject. Result: Segmentation. As rows: red
// the colour sources, green the unknown, blue the rough opacity, alpha the solids. Depends on "solid" and
// what was taught as solid, and the shot's model.
#pragma once

#include "unmix/Segmentation.h"
#include "unmix/UnmixStage.h"

class VlxUnmixBacking;

class VlxUnmixSolids final : public UnmixStage {
  public:
    VlxUnmixSolids(const NodeContext& context, const UnmixParams* params, VlxUnmixBacking& backing)
        : UnmixStage(context, params, 3), backing_(backing) {}

    const char* class_name() const override { return "VlxUnmixSolids"; }
    const char* input_label(int input, char* buffer) const override;

    // Good after make().
    const unmix::Segmentation& segmentation() const { return segmentation_; }

  protected:
    void append_params(Zo::Image::Hash& hash) const override;
    bool compute(Lock& helpers) override;
    std::size_t bytes_for(std::size_t pixels) const override { return 3 * pixels; }
    void show(int y, int x, ChannelSet channels, Row& row) override;

  private:
    VlxUnmixBacking& backing_;
    unmix::Segmentation segmentation_;
};
