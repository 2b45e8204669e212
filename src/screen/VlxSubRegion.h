// The subject area as film correction needs it, found without a clean plate.
//
// Input 0: colour on the working scale. Output: the same colour, alpha = 255 or 0.
// Reads "Backing Color ", "Film Brights ", "Film Darks ", "InnerCoolDensity", "InnerWarmDensity" and
// "ColorIndex"; hashes all but the last.
#pragma once

#include "framework/VlxIop.h"

class VlxSubRegion final : public VlxIop {
  public:
    VlxSubRegion(const Zo::Image::NodeContext& context, const ControlBlock* controls)
        : VlxIop(context, controls) {
        inputs(1);
    }

    const char* class_name() const override { return "VlxSubRegion"; }
    const char* help_text() const override {
        return "Calculates a \"crude\" matte that is used in the creation of the Clear Region. \n"
               "We only calculate a Crude Matte is we have a Clean Plate";
    }
    void setup() override;

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};
