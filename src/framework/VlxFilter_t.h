// A separable filter of alpha: a horizontal pass H, then a vertical pass V, each skipped while its radius is
// below 1. Colour comes from input 0 unchanged; the box is input 0's. With both passes skipped the operator
// is an identity.
//
// A subclass supplies its description and configure(), which sets the parameters of both passes from the
// controls and runs at the head of every validation. The passes are wired during validation: who requests one
// validates it after that. Rows may be made on any thread.
#pragma once

#include "framework/VlxBaseFilter.h"
#include "framework/VlxIop.h"

template <class H, class V>
class VlxFilter_t : public VlxIop {
  public:
    VlxFilter_t(const NodeContext& context, const ControlBlock* controls, Description description)
        : VlxIop(context, controls, std::move(description)), horizontal_(context), vertical_(context) {
        horizontal_.set_input(0, input_op(0));
        vertical_.set_input(0, &horizontal_);
        horizontal_.parent(this, "horizontal");
        vertical_.parent(this, "vertical");
    }

    virtual void configure() = 0;
    Zo::Image::ChannelSet kept_channels() const override { return Zo::Image::kMaskAlpha; }

  protected:
    void _validate(bool for_real) override {
        configure();
        if (identity()) {
            set_out_channels(Zo::Image::kMaskNone);
            copy_info();
            return;
        }
        set_out_channels(Zo::Image::kMaskAll);
        if (for_real) {
            horizontal_.set_input(0, input_op(0));
            vertical_.set_input(0, horizontal_.radius() < 1 ? input_op(0) : &horizontal_);
            horizontal_.invalidate();
            vertical_.invalidate();
        }
        copy_info();
    }

    void _close() override {
        if (users() < 2) {
            horizontal_.invalidate();
            horizontal_.close();
            vertical_.invalidate();
            vertical_.close();
        }
        Iop::_close();
    }

    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override {
        using Zo::Image::kMaskAlpha;
        if (identity()) {
            input(0).request(x, y, r, t, channels, count);
            return;
        }
        input(0).request(x, y, r, t, channels - kMaskAlpha, count);
        last_pass().request(x, y, r, t, kMaskAlpha, count);
    }

    void engine(int y, int /*x*/, int /*r*/, const Zo::Image::ChannelSet& channels,
                Zo::Image::Row& row) override {
        using Zo::Image::kMaskAlpha;
        row.get(input(0), y, channels - kMaskAlpha);
        if (channels.has(Zo::Image::kAlpha)) row.get(last_pass(), y, kMaskAlpha);
    }

    H& horizontal() { return horizontal_; }
    V& vertical() { return vertical_; }
    bool identity() const { return horizontal_.radius() < 1 && vertical_.radius() < 1; }
    // The pass whose alpha is the result.
    VlxBaseFilter& last_pass() {
        if (vertical_.radius() < 1) return horizontal_;
        return vertical_;
    }

  private:
    H horizontal_;
    V vertical_;
};
