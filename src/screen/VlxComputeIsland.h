// Orphan removal: flips single pixels of the clear region that most of their neighbours contradict.
//
// Input 0: the clear region, alpha 255 or 0. Output: the same with orphans flipped; colour unchanged.
// Reads and hashes "Roto Orphans ", the number of disagreeing neighbours that flips a pixel; 0 switches the
// operator off. Rows are independent, on any thread.
#pragma once

#include "framework/VlxIop.h"

class VlxComputeIsland final : public VlxIop {
  public:
    VlxComputeIsland(const NodeContext& context, const ControlBlock* controls)
        : VlxIop(context, controls,
                 {.class_name = "VlxComputeIsland",
                  .inputs = {{kMaskAlpha}},
                  .hashed = {controls::kRotoOrphans}}) {}

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};
