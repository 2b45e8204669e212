// What this frame tells of its shot: the numbers of a ShotModel, of one frame.
//
// Input 0 the clean matte. Result: ShotModel, empty where no backing is found; from this frame alone when the
// operators before it know no shot. As rows: the matte's alpha. Depends on nothing but its input.
#pragma once

#include "unmix/ShotModel.h"
#include "unmix/UnmixStage.h"

class VlxUnmixBacking;
class VlxUnmixClean;
class VlxUnmixSolids;

class VlxUnmixShot final : public UnmixStage {
  public:
    VlxUnmixShot(const NodeContext& context, const UnmixParams* params, VlxUnmixBacking& backing,
                 VlxUnmixSolids& solids, VlxUnmixClean& clean)
        : UnmixStage(context, params, 1), backing_(backing), solids_(solids), clean_(clean) {}

    const char* class_name() const override { return "VlxUnmixShot"; }

    // Of the frame that was rendered last.
    const ShotModel& model() const { return model_; }

  protected:
    void append_params(Zo::Image::Hash& /*hash*/) const override {}
    bool compute(Lock& helpers) override;
    std::size_t bytes_for(std::size_t /*pixels*/) const override { return 1 << 16; }
    void show(int y, int x, ChannelSet channels, Row& row) override;

  private:
    VlxUnmixBacking& backing_;
    VlxUnmixSolids& solids_;
    VlxUnmixClean& clean_;
    ShotModel model_;
};
