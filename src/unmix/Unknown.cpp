// What is neither backing nor surely opaque, and a little around it.
#include <algorithm>
#include <vector>

#include "unmix/MorphologyKernel.h"
#include "unmix/SolidsFit.h"
#include "unmix/UnknownKernel.h"

namespace unmix {

namespace {

constexpr float kNoise = 1.2f;
constexpr float kShare = 0.012f;
constexpr int kGrow = 4;  // pixels, on any frame: soft edges are of the lens, but fringes are of pixels
constexpr int kStrip = 64;

// A strip of rows with one pixel more at both ends, and so many rows more on both sides.
template <class T>
class Strip {
  public:
    Strip(int width, int rows, int halo)
        : stride_(static_cast<std::size_t>(width) + 2),
          halo_(halo),
          pixels_(stride_ * static_cast<std::size_t>(rows + 2 * halo), T{}) {}
    // Where the pixel before the first of the row is.
    T* row(int y) { return pixels_.data() + stride_ * static_cast<std::size_t>(y + halo_); }
    int halo() const { return halo_; }

  private:
    std::size_t stride_;
    int halo_;
    std::vector<T> pixels_;
};

class Finder {
  public:
    Finder(const BackingModel& backing, const Floats& garbage, Segmentation& found)
        : backing_(backing),
          garbage_(garbage),
          found_(found),
          width_(backing.scale.width),
          height_(backing.scale.height) {
        for (std::size_t c = 0; c < 3; ++c) params_.noise[c] = kNoise * backing.sigma[c];
        params_.share = kShare;
    }

    void strip(int from, int to) const {
        const int rows = to - from;
        Strip<float> odd(width_, rows, kGrow + 1);
        std::vector<float> lines(3 * size());
        for (int y = -odd.halo(); y < rows + odd.halo(); ++y)
            odd_row(std::clamp(from + y, 0, height_ - 1), lines, odd.row(y));
        Strip<std::uint8_t> mask(width_, rows, kGrow);
        for (int y = -kGrow; y < rows + kGrow; ++y) {
            mostly_odd({odd.row(y - 1), odd.row(y), odd.row(y + 1)}, mask.row(y) + 1, size());
            pad(mask.row(y));
        }
        for (int n = kGrow; n > 0; --n) {
            Strip<std::uint8_t> next(width_, rows, n - 1);
            for (int y = -(n - 1); y < rows + (n - 1); ++y) {
                grow_mask({mask.row(y - 1), mask.row(y), mask.row(y + 1)}, next.row(y) + 1, size());
                pad(next.row(y));
            }
            mask = std::move(next);
        }
        for (int y = 0; y < rows; ++y) keep(mask.row(y) + 1, from + y);
    }

  private:
    std::size_t size() const { return static_cast<std::size_t>(width_); }

    template <class T>
    void pad(T* row) const {
        row[0] = row[1];
        row[width_ + 1] = row[width_];
    }

    void odd_row(int y, std::vector<float>& lines, float* odd) const {
        const auto around = [&](std::size_t c, int x) {
            std::array<const float*, 3> rows{};
            for (int d = 0; d < 3; ++d) {
                rows[static_cast<std::size_t>(d)] =
                    backing_.light[c].row(std::clamp(y + d - 1, 0, height_ - 1)) + x;
            }
            return rows;
        };
        const std::array<float*, 3> out{lines.data(), lines.data() + size(), lines.data() + 2 * size()};
        backing_.row(y, 0, width_, out);
        if (width_ > 2) {
            odd_pixels(params_, {around(0, 1), around(1, 1), around(2, 1)},
                       {out[0] + 1, out[1] + 1, out[2] + 1}, odd + 2, size() - 2);
        }
        // Beyond the first and the last pixel the row repeats.
        for (const int x : {0, width_ - 1}) {
            std::array<std::array<float, 9>, 3> ends{};
            std::array<std::array<const float*, 3>, 3> plate{};
            for (std::size_t c = 0; c < 3; ++c) {
                const auto rows = around(c, 0);
                for (std::size_t d = 0; d < 3; ++d) {
                    for (int n = -1; n <= 1; ++n) {
                        ends[c][3 * d + static_cast<std::size_t>(n + 1)] =
                            rows[d][std::clamp(x + n, 0, width_ - 1)];
                    }
                    plate[c][d] = ends[c].data() + 3 * d + 1;
                }
            }
            odd_pixels(params_, plate, {out[0] + x, out[1] + x, out[2] + x}, odd + 1 + x, 1);
        }
        pad(odd);
    }

    // Leaves out what is known.
    void keep(const std::uint8_t* mask, int y) const {
        const int side = backing_.scale.fine();
        const std::uint8_t* const solid = found_.solid.row(y / side);
        const float* const outside = garbage_.empty() ? nullptr : garbage_.row(y);
        std::uint8_t* const to = found_.unknown.row(y);
        for (int n = 0, x = 0; x < width_; ++n) {
            const int end = std::min(x + side, width_);
            for (; x < end; ++x) to[x] = solid[n] != 0 ? 0 : mask[x];
        }
        if (outside == nullptr) return;
        for (int x = 0; x < width_; ++x) to[x] = outside[x] < 0.5f ? to[x] : 0;
    }

    const BackingModel& backing_;
    const Floats& garbage_;
    Segmentation& found_;
    int width_;
    int height_;
    OddParams params_{};
};

}  // namespace

void find_unknown(const BackingModel& backing, const Floats& garbage, Segmentation& found,
                  const ParallelLoop& loop) {
    const int height = backing.scale.height;
    found.unknown.resize(backing.scale.width, height);
    const Finder finder(backing, garbage, found);
    loop(0, (height + kStrip - 1) / kStrip, 1, [&](int begin, int end) {
        for (int n = begin; n < end; ++n) finder.strip(n * kStrip, std::min((n + 1) * kStrip, height));
    });
}

}  // namespace unmix
