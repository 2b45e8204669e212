// Small images for tests: sources whose pixels a test chooses, and a render into plain planes.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "ZoImage/Iop.h"
#include "ZoImage/Render.h"

namespace test {

using namespace Zo::Image;

// An image whose pixel at (x, y) of a channel is whatever the given function says. Counts its rows.
class FunctionSource : public Iop {
  public:
    using Pixel = std::function<float(Channel, int x, int y)>;

    FunctionSource(const Box& box, ChannelSet channels, Pixel pixel)
        : FunctionSource(box, channels, std::move(pixel), box) {}
    FunctionSource(const Box& box, ChannelSet channels, Pixel pixel, const Box& frame)
        : Iop(NodeContext{}), box_(box), frame_(frame), channels_(channels), pixel_(std::move(pixel)) {}

    const char* class_name() const override { return "FunctionSource"; }

    void set_pixel(Pixel pixel) {
        pixel_ = std::move(pixel);
        invalidate();
    }
    int validations() const { return validations_; }
    int rows() const { return rows_; }

  protected:
    void _validate(bool /*for_real*/) override {
        ++validations_;
        info_.box = box_;
        info_.format.box = frame_;
        info_.channels = channels_;
        set_out_channels(kMaskAll);
    }
    void engine(int y, int x, int r, const ChannelSet& channels, Row& row) override {
        ++rows_;
        for (const Channel c : channels) {
            float* out = row.overwrite(c);
            for (int i = x; i < r; ++i) out[i - x] = pixel_(c, i, y);
        }
    }

  private:
    Box box_, frame_;
    ChannelSet channels_;
    Pixel pixel_;
    int validations_ = 0;
    std::atomic<int> rows_{0};
};

inline float pattern(Channel c, int x, int y) {
    return static_cast<float>((x * 7 + y * 13 + c * 29) % 31);
}

// Rendered planes of one box, row box.y first.
struct Picture {
    Box box;
    std::array<std::vector<float>, 5> planes;  // by channel number, 1 to 4
    bool complete = false;

    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>((y - box.y) * box.width() + x - box.x);
    }
    float at(Channel c, int x, int y) const { return planes[c][index(x, y)]; }
};

inline Picture render(Renderer& renderer, Iop& op, const Box& box, ChannelSet channels = kMaskRgba) {
    Picture picture{box, {}};
    for (auto& plane : picture.planes) plane.resize(picture.index(box.x, box.t));
    picture.complete = renderer.render(op, box, channels, [&](int y, const Row& row) {
        for (const Channel c : channels)
            std::copy_n(row[c], box.width(), &picture.planes[c][picture.index(box.x, y)]);
    });
    return picture;
}

inline Picture render(Iop& op, const Box& box, int threads = 1, ChannelSet channels = kMaskRgba) {
    Renderer renderer(threads);
    return render(renderer, op, box, channels);
}

inline Picture render(Iop& op, int threads = 1) {
    op.validate(true);
    return render(op, op.info().box, threads);
}

}  // namespace test
