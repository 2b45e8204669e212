// The backing as it would be without the subject, from the plate itself.
//
// Input 0 the plate, 1 "cp" a clean plate (may be missing), 2 "gm" a garbage matte (may be missing), all as
// the host delivers them. Result: BackingModel. As rows: red, green, blue the backing in light; alpha 1 where
// the plate surely shows it. Depends on the screen's primary, the encoding, "folds", what was taught as
// backing, and the shot's model.
#pragma once

#include "unmix/BackingModel.h"
#include "unmix/UnmixStage.h"

class VlxUnmixBacking final : public UnmixStage {
  public:
    VlxUnmixBacking(const NodeContext& context, const UnmixParams* params) : UnmixStage(context, params, 3) {}

    const char* class_name() const override { return "VlxUnmixBacking"; }
    const char* input_label(int input, char* buffer) const override;

    // Good after make().
    const unmix::BackingModel& model() const { return model_; }

  protected:
    void append_params(Zo::Image::Hash& hash) const override;
    bool compute(Lock& helpers) override;
    std::size_t bytes_for(std::size_t pixels) const override { return 20 * pixels; }
    void show(int y, int x, ChannelSet channels, Row& row) override;

  private:
    unmix::BackingModel model_;
};
