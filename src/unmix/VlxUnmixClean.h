// The matte without its noise: smoothed where noise explains what there is, pulled to 0 and to 1 where that
// is likelier than what lies between, small holes inside the subject filled.
//
// Input 0 the solution, 1 "gm" garbage matte, 2 "hm" holdout matte (either may be missing), as the host
// delivers them. Result: alpha of every pixel, 0 to 1. As rows: alpha; red, green and blue the same. Depends
// on "denoise" and "detail".
#pragma once

#include "unmix/Plane.h"
#include "unmix/UnmixStage.h"

class VlxUnmixBacking;
class VlxUnmixSolids;
class VlxUnmixSolve;

class VlxUnmixClean final : public UnmixStage {
  public:
    VlxUnmixClean(const NodeContext& context, const UnmixParams* params, VlxUnmixBacking& backing,
                  VlxUnmixSolids& solids, VlxUnmixSolve& solve)
        : UnmixStage(context, params, 3), backing_(backing), solids_(solids), solve_(solve) {}

    const char* class_name() const override { return "VlxUnmixClean"; }
    const char* input_label(int input, char* buffer) const override;

    // Good after make().
    const unmix::Floats& alpha() const { return alpha_; }

  protected:
    void append_params(Zo::Image::Hash& hash) const override;
    bool compute(Lock& helpers) override;
    std::size_t bytes_for(std::size_t pixels) const override { return 4 * pixels; }
    void show(int y, int x, ChannelSet channels, Row& row) override;

  private:
    VlxUnmixBacking& backing_;
    VlxUnmixSolids& solids_;
    VlxUnmixSolve& solve_;
    unmix::Floats alpha_;
};
