// Base of the operators of the unmixing matte: each makes one result for the whole frame, which the ones
// behind it take as it is, and shows it as rows for whoever wants to look.
//
// Input 0 gives the box. A result is made by the first who needs it, under its own lock; it lives until the
// parameters that it depends on, or an input, change. The threads that wait for the last operator of a chain
// help with all of it.
#pragma once

#include "ZoImage/Hash.h"
#include "ZoImage/Iop.h"
#include "framework/FrameOnce.h"
#include "unmix/Plane.h"
#include "unmix/UnmixParams.h"

class UnmixStage : public Zo::Image::Iop {
  public:
    using ChannelSet = Zo::Image::ChannelSet;
    using Lock = Zo::Image::Lock;
    using NodeContext = Zo::Image::NodeContext;
    using Row = Zo::Image::Row;

    UnmixStage(const NodeContext& context, const UnmixParams* params, int inputs)
        : Iop(context), params_(params) {
        this->inputs(inputs);
    }

    // Invalidates the operator when what it depends on is other than before.
    void setup();
    // Makes the result unless it is there. The caller holds `helpers`, whose waiting threads help. False when
    // the render was aborted.
    bool make(Lock& helpers);

    const char* help_text() const override { return "Veloxa Internal Operator."; }
    ChannelSet kept_channels() const override { return Zo::Image::kMaskNone; }

  protected:
    const UnmixParams& params() const { return *params_; }

    static void append_colours(Zo::Image::Hash& hash, const std::vector<TaughtColour>& colours);
    void append_shot(Zo::Image::Hash& hash) const;

    std::vector<std::array<float, 3>> colours_in_light(const std::vector<TaughtColour>& colours) const;

    // The matte on input n, every pixel; empty where nothing is connected. False when the render was aborted.
    bool read_matte(int n, unmix::Floats& matte, Lock& helpers) const;

    // The parameters that the result depends on.
    virtual void append_params(Zo::Image::Hash& hash) const = 0;
    // False when the render was aborted.
    virtual bool compute(Lock& helpers) = 0;
    // Memory that the result takes, in bytes, for so many pixels.
    virtual std::size_t bytes_for(std::size_t pixels) const = 0;
    // Row `y` of the result, 0 at the bottom of the box, columns from x on; channels red to alpha.
    virtual void show(int y, int x, ChannelSet channels, Row& row) = 0;

    void _validate(bool for_real) override;
    void _close() override;
    void _request(int x, int y, int r, int t, ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const ChannelSet& channels, Row& row) override;

  private:
    const UnmixParams* params_;
    FrameOnce once_;
};
