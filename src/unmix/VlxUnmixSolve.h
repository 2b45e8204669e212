// Alpha by unmixing: plate = alpha * subject + (1 - alpha) * backing + noise, the subject's colour being that
// of the solids nearby, of one of the clusters of their rims, or anything neutral, whichever explains the
// neighbourhood best.
//
// Input 0 the solids. Result: Solution. As rows: red the candidate chosen (over 16), green the deviation of
// alpha by noise, blue by all, alpha alpha.
// Depends on "veil", what was taught as see-through, and the shot's model.
#pragma once

#include "unmix/Solution.h"
#include "unmix/UnmixStage.h"

class VlxUnmixBacking;
class VlxUnmixSolids;

class VlxUnmixSolve final : public UnmixStage {
  public:
    VlxUnmixSolve(const NodeContext& context, const UnmixParams* params, VlxUnmixBacking& backing,
                  VlxUnmixSolids& solids)
        : UnmixStage(context, params, 1), backing_(backing), solids_(solids) {}

    const char* class_name() const override { return "VlxUnmixSolve"; }

    // Good after make().
    const unmix::Solution& solution() const { return solution_; }

  protected:
    void append_params(Zo::Image::Hash& hash) const override;
    bool compute(Lock& helpers) override;
    std::size_t bytes_for(std::size_t pixels) const override { return 13 * pixels; }
    void show(int y, int x, ChannelSet channels, Row& row) override;

  private:
    VlxUnmixBacking& backing_;
    VlxUnmixSolids& solids_;
    unmix::Solution solution_;
};
