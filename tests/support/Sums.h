// An operator that looks around: alpha is the sum over (2 dx + 1) x (2 dy + 1) pixels of every input, plus an
// offset. Colour passes from input 0, except that red gets the offset added in place.
#pragma once

#include "ZoImage/GeneralTile.h"
#include "support/TestImages.h"

namespace test {

class Sums final : public Iop {
  public:
    Sums(const char* name, std::initializer_list<Op*> sources, int dx, int dy)
        : Iop(NodeContext{name}), dx_(dx), dy_(dy) {
        inputs(static_cast<int>(sources.size()));
        int n = 0;
        for (Op* source : sources) set_input(n++, source);
    }
    const char* class_name() const override { return "Sums"; }
    void set_offset(float offset) {
        offset_ = offset;
        invalidate();
    }
    float offset() const { return offset_; }
    std::size_t frame = 0;           // bytes that it holds itself
    bool ahead = false;              // it reads its last input whole before its first row
    AbortFlag* lost_flag = nullptr;  // cleared as soon as an abort is seen, and a wrong row given

  protected:
    void _validate(bool /*for_real*/) override {
        copy_info();
        set_out_channels(ChannelSet(kAlpha) + (offset_ != 0.0f ? ChannelSet(kRed) : kMaskNone));
    }
    void _request(int x, int y, int r, int t, ChannelSet channels, int count) override {
        hold(frame);
        reads_ahead_ = ahead;
        if (ahead) input(inputs() - 1).read_ahead(kMaskAll);
        input(0).request(x, y, r, t, channels - kMaskAlpha, count);
        for (int n = 0; n < inputs(); ++n)
            input(n).request(x - dx_, y - dy_, r + dx_, t + dy_, kMaskAlpha, count);
    }
    void engine(int y, int x, int r, const ChannelSet& channels, Row& row) override {
        row.get(input(0), y, channels - kMaskAlpha);
        float* red = channels.has(kRed) && offset_ != 0.0f ? row.writable(kRed) : nullptr;
        for (int i = 0; red != nullptr && i < r - x; ++i) red[i] += offset_;
        if (!channels.has(kAlpha)) return;
        const int ahead_end = reads_ahead_.exchange(false) ? info_.box.t : info_.box.y;
        for (int v = info_.box.y; v < ahead_end; ++v) Row(x, r).get(input(inputs() - 1), v, kMaskAlpha);
        float* out = row.overwrite(kAlpha);
        std::fill_n(out, r - x, offset_);
        for (int n = 0; n < inputs(); ++n) {
            const GeneralTile tile(input(n), {x - dx_, y - dy_, r + dx_, y + dy_ + 1}, kMaskAlpha);
            for (int i = x; i < r && tile.valid(); ++i) {
                for (int v = y - dy_; v <= y + dy_; ++v) {
                    for (int u = i - dx_; u <= i + dx_; ++u) out[i - x] += tile.at(kAlpha, u, v);
                }
            }
        }
        if (lost_flag != nullptr && aborted()) {
            lost_flag->clear();
            std::fill_n(out, r - x, -1e9f);
        }
    }

  private:
    int dx_, dy_;
    std::atomic<bool> reads_ahead_{false};
    float offset_ = 0.0f;
};

}  // namespace test
