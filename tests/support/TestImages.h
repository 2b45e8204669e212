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

// An image whose pixel at (x, y) of a channel is whatever the given function says. Counts its rows.
class FunctionSource : public Zo::Image::Iop {
  public:
    using Pixel = std::function<float(Zo::Image::Channel, int x, int y)>;

    FunctionSource(const Zo::Image::Box& box, Zo::Image::ChannelSet channels, Pixel pixel)
        : Iop(Zo::Image::NodeContext{}), box_(box), channels_(channels), pixel_(std::move(pixel)) {}

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
        info_.format.box = box_;
        info_.channels = channels_;
        set_out_channels(Zo::Image::kMaskAll);
    }
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override {
        ++rows_;
        for (const Zo::Image::Channel c : channels) {
            float* out = row.overwrite(c);
            for (int i = x; i < r; ++i) out[i - x] = pixel_(c, i, y);
        }
    }

  private:
    Zo::Image::Box box_;
    Zo::Image::ChannelSet channels_;
    Pixel pixel_;
    int validations_ = 0;
    std::atomic<int> rows_{0};
};

inline float pattern(Zo::Image::Channel c, int x, int y) {
    return static_cast<float>((x * 7 + y * 13 + c * 29) % 31);
}

// Rendered planes of one box, row box.y first.
struct Picture {
    Zo::Image::Box box;
    std::array<std::vector<float>, 5> planes;  // by channel number, 1 to 4
    bool complete = false;

    float at(Zo::Image::Channel c, int x, int y) const {
        return planes[static_cast<std::size_t>(c)]
                     [static_cast<std::size_t>(y - box.y) * static_cast<std::size_t>(box.width()) +
                      static_cast<std::size_t>(x - box.x)];
    }
};

inline Picture render(Zo::Image::Renderer& renderer, Zo::Image::Iop& op, const Zo::Image::Box& box,
                      Zo::Image::ChannelSet channels = Zo::Image::kMaskRgba) {
    Picture picture;
    picture.box = box;
    const auto width = static_cast<std::size_t>(box.width());
    for (auto& plane : picture.planes) plane.resize(width * static_cast<std::size_t>(box.height()));
    picture.complete = renderer.render(op, box, channels, [&](int y, const Zo::Image::Row& row) {
        for (const Zo::Image::Channel c : channels) {
            std::copy_n(row[c], width,
                        picture.planes[static_cast<std::size_t>(c)].data() +
                            static_cast<std::size_t>(y - box.y) * width);
        }
    });
    return picture;
}

inline Picture render(Zo::Image::Iop& op, const Zo::Image::Box& box, int threads = 1,
                      Zo::Image::ChannelSet channels = Zo::Image::kMaskRgba) {
    Zo::Image::Renderer renderer(threads);
    return render(renderer, op, box, channels);
}

inline Picture render(Zo::Image::Iop& op, int threads = 1) {
    op.validate(true);
    return render(op, op.info().box, threads);
}

}  // namespace test
