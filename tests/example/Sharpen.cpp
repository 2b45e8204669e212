// A complete node in a module of its own, written against the engine's public headers alone: adds to every
// colour channel a share of its difference from the mean of the pixels above and below.
#include <cstdint>
#include <new>

#include "ZoImage/GeneralTile.h"
#include "ZoImage/Iop.h"
#include "ZoImage/KnobClosure.h"

using namespace Zo::Image;

namespace {

class Sharpen final : public Iop {
  public:
    explicit Sharpen(const NodeContext& context) : Iop(context) { inputs(1); }

    const char* class_name() const override { return "Sharpen"; }
    const char* help_text() const override { return "Sharpens along columns."; }

    void knobs(Knob_Closure& f) override {
        value_knob(f, std::span(&amount_, 1), "amount", "amount");
        SetRange(f, 0.0, 4.0);
        Tooltip(f, "How much of the difference is added.");
    }

  protected:
    void _validate(bool /*for_real*/) override {
        copy_info();
        // With nothing to add every channel passes through, at no cost.
        set_out_channels(amount_ == 0.0f ? kMaskNone : kMaskRgb);
    }

    void _request(int x, int y, int r, int t, ChannelSet channels, int count) override {
        input(0).request(x, y - 1, r, t + 1, channels, count);
    }

    void engine(int y, int x, int r, const ChannelSet& channels, Row& row) override {
        row.get(input(0), y, channels - kMaskRgb);
        const ChannelSet colour = channels & kMaskRgb;
        const GeneralTile tile(input(0), {x, y - 1, r, y + 2}, colour);
        if (!tile.valid()) return;
        for (const Channel c : colour) {
            const float* below = tile.line(c, y - 1);
            const float* here = tile.line(c, y);
            const float* above = tile.line(c, y + 1);
            float* out = row.overwrite(c);
            for (std::size_t i = 0; i < row.width(); ++i) {
                out[i] = here[i] + amount_ * (here[i] - 0.5f * (below[i] + above[i]));
            }
        }
    }

  private:
    float amount_ = 1.0f;
};

const Op::Description description("Sharpen", "Filter/Sharpen", [](const NodeContext& context) -> Op* {
    return new (std::nothrow) Sharpen(context);
});

}  // namespace
