// The shadow that lies on the backing, as the shadow blur takes it: how much of its light the backing lacks.
//
// Input 0 the backing. As rows: every channel 255 times the share of light that is missing, 0 where there is
// all of it, at most 255.
// Depends on no parameter.
#pragma once

#include "unmix/UnmixStage.h"

class VlxUnmixBacking;

class VlxUnmixShadow final : public UnmixStage {
  public:
    VlxUnmixShadow(const NodeContext& context, const UnmixParams* params, VlxUnmixBacking& backing)
        : UnmixStage(context, params, 1), backing_(backing) {}

    const char* class_name() const override { return "VlxUnmixShadow"; }

  protected:
    void append_params(Zo::Image::Hash& /*hash*/) const override {}
    bool compute(Lock& helpers) override;
    std::size_t bytes_for(std::size_t /*pixels*/) const override { return 0; }
    void show(int y, int x, ChannelSet channels, Row& row) override;

  private:
    VlxUnmixBacking& backing_;
};
