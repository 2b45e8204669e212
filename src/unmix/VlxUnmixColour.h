// The subject's colour: what the backing left of the plate, without its spill.
//
// Input 0 the clean matte. Result: the colour as the plate would store it, times alpha. As rows: red, green
// and blue that colour, alpha alpha, 0 to 1. Depends on "spill", the encoding, what was taught to hold none,
// and the shot's model.
#pragma once

#include "unmix/Plane.h"
#include "unmix/UnmixStage.h"

class VlxUnmixBacking;
class VlxUnmixClean;
class VlxUnmixSolids;

class VlxUnmixColour final : public UnmixStage {
  public:
    VlxUnmixColour(const NodeContext& context, const UnmixParams* params, VlxUnmixBacking& backing,
                   VlxUnmixSolids& solids, VlxUnmixClean& clean)
        : UnmixStage(context, params, 1), backing_(backing), solids_(solids), clean_(clean) {}

    const char* class_name() const override { return "VlxUnmixColour"; }

  protected:
    void append_params(Zo::Image::Hash& hash) const override;
    bool compute(Lock& helpers) override;
    std::size_t bytes_for(std::size_t pixels) const override { return 12 * pixels; }
    void show(int y, int x, ChannelSet channels, Row& row) override;

  private:
    VlxUnmixBacking& backing_;
    VlxUnmixSolids& solids_;
    VlxUnmixClean& clean_;
    unmix::Colours colour_;
};
