// Shadow density without a clean plate, from the interpolated backing.
//
// Input 0: the backing's colour on the working scale. Output: the same colour, alpha = shadow density, 0 to
// 255. Reads "Backing Color " and "ColorIndex"; hashes the first.
#pragma once

#include "framework/VlxIop.h"

class VlxComputeShadow final : public VlxIop {
  public:
    VlxComputeShadow(const Zo::Image::NodeContext& context, const ControlBlock* controls)
        : VlxIop(context, controls) {
        inputs(1);
    }

    const char* class_name() const override { return "VlxComputeShadow"; }
    void setup() override;

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};
