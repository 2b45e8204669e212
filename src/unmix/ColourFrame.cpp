#include "unmix/ColourFrame.h"

#include <algorithm>
#include <vector>

#include "unmix/EncodingKernel.h"

namespace unmix {

namespace {

constexpr int kStrip = 16;

class Painter {
  public:
    Painter(const BackingModel& backing, const Floats& alpha, const SpillParams& params, Encoding encoding,
            Colours& colour)
        : backing_(backing),
          alpha_(alpha),
          params_(params),
          encoding_(encoding),
          colour_(colour),
          width_(backing.scale.width),
          stride_(static_cast<std::size_t>(backing.scale.width) + 2) {
        for (auto& plane : padded_) plane.resize(stride_ * (kStrip + 2));
        for (auto& plane : sums_) plane.resize(static_cast<std::size_t>(width_));
        for (auto& line : lines_) line.resize(static_cast<std::size_t>(width_));
    }

    void strip(int from, int to) {
        const int rows = to - from;
        for (int y = -1; y <= rows; ++y) fill_row(std::clamp(from + y, 0, backing_.scale.height - 1), y + 1);
        for (int y = 0; y < rows; ++y) finish_row(from + y, y);
    }

  private:
    // Colour and alpha of a row, with one pixel more at both ends.
    void fill_row(int y, int at) {
        const float* const alpha = alpha_.row(y);
        backing_.row(y, 0, width_, {lines_[0].data(), lines_[1].data(), lines_[2].data()});
        for (std::size_t c = 0; c < 4; ++c) {
            float* const row = padded_[c].data() + stride_ * static_cast<std::size_t>(at);
            if (c < 3) {
                take_backing(backing_.light[c].row(y), lines_[c].data(), alpha, row + 1,
                             static_cast<std::size_t>(width_));
            } else {
                std::copy_n(alpha, width_, row + 1);
            }
            row[0] = row[1];
            row[width_ + 1] = row[width_];
        }
    }

    void finish_row(int y, int at) {
        const float* const alpha = alpha_.row(y);
        std::array<float*, 3> out{};
        for (std::size_t c = 0; c < 3; ++c) out[c] = colour_[c].row(y);
        for (int x = 0; x < width_;) {
            const int clear = x;
            while (x < width_ && alpha[x] == 0.0f) ++x;
            for (float* const channel : out) std::fill(channel + clear, channel + x, 0.0f);
            const int start = x;
            while (x < width_ && alpha[x] != 0.0f) ++x;
            if (x == start) break;
            const auto n = static_cast<std::size_t>(x - start);
            for (std::size_t c = 0; c < 4; ++c) {
                const float* const row = padded_[c].data() + stride_ * static_cast<std::size_t>(at) + start;
                sum_rows({row, row + stride_, row + 2 * stride_}, sums_[c].data(), n);
                if (c < 3) std::copy_n(row + stride_ + 1, n, out[c] + start);
            }
            remove_spill(params_, {sums_[0].data(), sums_[1].data(), sums_[2].data(), sums_[3].data()},
                         alpha + start, {out[0] + start, out[1] + start, out[2] + start}, n);
            for (float* const channel : out) store(alpha + start, channel + start, n);
        }
    }

    // As the plate stores colours.
    void store(const float* alpha, float* colour, std::size_t n) const {
        if (encoding_ == Encoding::kStored) return;
        for (std::size_t i = 0; i < n; ++i) colour[i] /= alpha[i];
        from_light(encoding_, colour, colour, n);
        for (std::size_t i = 0; i < n; ++i) colour[i] *= alpha[i];
    }

    const BackingModel& backing_;
    const Floats& alpha_;
    const SpillParams& params_;
    Encoding encoding_;
    Colours& colour_;
    int width_;
    std::size_t stride_;
    std::array<std::vector<float>, 4> padded_;
    std::array<std::vector<float>, 4> sums_;
    std::array<std::vector<float>, 3> lines_;
};

}  // namespace

void colour_frame(const BackingModel& backing, const Floats& alpha, const SpillParams& params,
                  Encoding encoding, Colours& colour, const ParallelLoop& loop) {
    const int height = backing.scale.height;
    resize(colour, backing.scale.width, height);
    loop(0, (height + kStrip - 1) / kStrip, 4, [&](int begin, int end) {
        Painter painter(backing, alpha, params, encoding, colour);
        for (int n = begin; n < end; ++n) painter.strip(n * kStrip, std::min((n + 1) * kStrip, height));
    });
}

}  // namespace unmix
