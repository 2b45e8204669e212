// The crude matte: where the foreground shows backing, judged against the clean plate.
//
// Input 0: foreground, input 1: clean plate (read while "CleanPlate" is set, else the foreground stands in);
// colour on the working scale. Output: the foreground's colour, alpha = 255 or 0.
// Reads "Screen Tolerance ", "CleanPlate", "ColorIndex"; hashes "Backing Color ", "Screen Tolerance ",
// "CleanPlate".
#pragma once

#include "framework/VlxIop.h"

class VlxClearRegionCP final : public VlxIop {
  public:
    VlxClearRegionCP(const Zo::Image::NodeContext& context, const ControlBlock* controls)
        : VlxIop(context, controls) {
        inputs(2);
    }

    const char* class_name() const override { return "VlxClearRegionCP"; }
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
