// Base of a filter pass that works along rows or along columns, with a radius in pixels.
//
// A radius of 0 or less makes the pass an identity. Otherwise its box is its input's, grown by the radius
// along its direction; beyond the input's box the edge pixels repeat. The owner sets the radius before
// validation; a pass knows no controls. A pass class answers horizontal() and implements engine, which gives
// every requested channel of input 0, the filtered ones replaced; on any thread.
#pragma once

#include "ZoImage/Iop.h"

class VlxBaseFilter : public Zo::Image::Iop {
  public:
    explicit VlxBaseFilter(const Zo::Image::NodeContext& context) : Iop(context) { inputs(1); }

    virtual bool horizontal() const = 0;

    const char* class_name() const override;
    const char* help_text() const override { return "blur internal operator"; }

    void set_radius(int radius) { radius_ = radius; }
    int radius() const { return radius_; }

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;

    // The box, grown by the radius along the direction; at most to the farthest coordinate.
    Zo::Image::Box grown(Zo::Image::Box box) const;
    // The radius of a horizontal pass as far as it can matter to columns x to r - 1: at most one more than
    // the distance of the input's farthest pixel. A wider window only repeats edge pixels once more.
    int reach(int x, int r) const;
    // The rows of the input that hold everything within `radius` of row y, over columns x to r - 1. Rows
    // beyond the input's box are its edge rows again and are left out.
    Zo::Image::Box rows_around(int y, int radius, int x, int r) const;

  private:
    int radius_ = 0;
};
