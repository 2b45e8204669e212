#include "unmix/CleanFrame.h"

#include <algorithm>
#include <memory>

#include "unmix/BoxKernel.h"
#include "unmix/Reduce.h"

namespace unmix {

namespace {

constexpr int kTileWidth = 128;
constexpr int kTileHeight = 64;

// What each step looks at around a pixel, and the halo that is left before it.
constexpr int kSmooth = 3;
constexpr int kSteady = 2;  // a pixel is smoothed where all so near are
constexpr int kAround = 1;
constexpr int kSeen = 5;
constexpr int kOpaque = 3;
constexpr int kBeforeOpaque = kOpaque;
constexpr int kBeforeSeen = kBeforeOpaque + kSeen;
constexpr int kAfterSmooth = kBeforeSeen + kAround;
constexpr int kBeforeSteady = kAfterSmooth + kSteady;
constexpr int kHalo = kBeforeSteady + kSmooth;

constexpr int kWide = kTileWidth + 2 * kHalo;
constexpr int kHigh = kTileHeight + 2 * kHalo;

// A picture of the tile with a halo.
struct Patch {
    static constexpr std::size_t kMost = static_cast<std::size_t>(kWide) * kHigh;

    // Row y of the tile, from the halo's first column on, for a halo that is `inner` wide.
    float* row(int y, int inner) {
        return pixels.data() + (y + halo) * (kTileWidth + 2 * halo) + (halo - inner);
    }

    int halo = kHalo;
    std::array<float, kMost> pixels;
};

struct Scratch {
    Patch raw, alpha, unknown, solid, variance, deviation, mask;
    Patch sum_mask, sum_alpha, sum_square, sum_variance, ratio, spare;
    std::array<float, kWide> column;
};

class Cleaner {
  public:
    Cleaner(const FrameScale& scale, const Segmentation& segmentation, const Solution& solution,
            const CleanParams& params, Floats& alpha)
        : scale_(scale), segmentation_(segmentation), solution_(solution), params_(params), alpha_(alpha) {}

    void tile(int left, int bottom) {
        left_ = left;
        bottom_ = bottom;
        const int right = std::min(left + kTileWidth, scale_.width);
        const int top = std::min(bottom + kTileHeight, scale_.height);
        bool any = false;
        for (int y = bottom; y < top; ++y) {
            const std::uint8_t* const unknown = segmentation_.unknown.row(y);
            any = any || std::any_of(unknown + left, unknown + right, [](auto v) { return v != 0; });
            std::copy(solution_.alpha.row(y) + left, solution_.alpha.row(y) + right, alpha_.row(y) + left);
        }
        if (!any) return;
        Scratch& s = scratch();
        gather(s);
        smooth(s);
        clear(s);
        fill(s);
        for (int y = bottom; y < top; ++y) {
            std::copy_n(s.alpha.row(y - bottom, 0), right - left, alpha_.row(y) + left);
        }
    }

  private:
    Scratch& scratch() {
        if (!scratch_) scratch_ = std::make_unique_for_overwrite<Scratch>();
        return *scratch_;
    }
    static std::size_t span(int halo) {
        return static_cast<std::size_t>(kTileWidth) + 2 * static_cast<std::size_t>(halo);
    }

    template <class Kernel>
    static void fold(const Kernel& kernel, Patch& in, int radius, Patch& out, Scratch& s) {
        out.halo = in.halo - radius;
        kernel(in.pixels.data(), radius, s.column.data(), out.pixels.data(), span(out.halo),
               static_cast<std::size_t>(kTileHeight) + 2 * static_cast<std::size_t>(out.halo));
    }

    template <class Visit>
    static void each_row(int halo, const Visit& visit) {
        for (int y = -halo; y < kTileHeight + halo; ++y) visit(y);
    }

    // Beyond the frame its edge repeats.
    void gather(Scratch& s) const {
        for (Patch* patch : {&s.raw, &s.unknown, &s.solid, &s.variance, &s.deviation, &s.mask}) {
            patch->halo = kHalo;
        }
        const int side = scale_.fine();
        each_row(kHalo, [&](int y) {
            const int fy = std::clamp(bottom_ + y, 0, scale_.height - 1);
            float* const alpha = s.raw.row(y, kHalo);
            float* const unknown = s.unknown.row(y, kHalo);
            float* const solid = s.solid.row(y, kHalo);
            float* const variance = s.variance.row(y, kHalo);
            float* const deviation = s.deviation.row(y, kHalo);
            float* const mask = s.mask.row(y, kHalo);
            const std::uint8_t* const solids = segmentation_.solid.row(fy / side);
            // From the first to the last column that the frame has, and what repeats on both sides.
            const int x0 = std::max(left_ - kHalo, 0);
            const int x1 = std::min(left_ - kHalo + kWide, scale_.width);
            const int before = x0 - (left_ - kHalo);
            repeat_cells(solids, side, x0, x1, solid + before);
            repeat_cells(segmentation_.unknown.row(fy), 1, x0, x1, unknown + before);
            std::copy(solution_.alpha.row(fy) + x0, solution_.alpha.row(fy) + x1, alpha + before);
            std::copy(solution_.variance.row(fy) + x0, solution_.variance.row(fy) + x1, variance + before);
            std::copy(solution_.deviation.row(fy) + x0, solution_.deviation.row(fy) + x1, deviation + before);
            for (float* const row : {alpha, unknown, solid, variance, deviation}) {
                std::fill(row, row + before, row[before]);
                std::fill(row + before + x1 - x0, row + kWide, row[before + x1 - x0 - 1]);
            }
            for (int n = 0; n < kWide; ++n) mask[n] = std::max(unknown[n], solid[n]);
        });
    }

    void smooth(Scratch& s) const {
        fold(box_sum, s.mask, kSmooth, s.sum_mask, s);
        fold(box_sum, s.variance, kSmooth, s.sum_variance, s);
        s.spare.halo = kHalo;
        for (std::size_t i = 0; i < Patch::kMost; ++i) s.spare.pixels[i] = s.raw.pixels[i] * s.mask.pixels[i];
        fold(box_sum, s.spare, kSmooth, s.sum_alpha, s);
        for (std::size_t i = 0; i < Patch::kMost; ++i) s.spare.pixels[i] *= s.raw.pixels[i];
        fold(box_sum, s.spare, kSmooth, s.sum_square, s);

        const auto sums = [&](int y, int halo) {
            return AlphaSums{s.sum_mask.row(y, halo), s.sum_alpha.row(y, halo), s.sum_square.row(y, halo),
                             s.sum_variance.row(y, halo)};
        };
        s.ratio.halo = kBeforeSteady;
        each_row(kBeforeSteady, [&](int y) {
            noise_ratio(sums(y, kBeforeSteady), s.mask.row(y, kBeforeSteady), s.ratio.row(y, kBeforeSteady),
                        span(kBeforeSteady));
        });
        fold(box_most_of, s.ratio, kSteady, s.spare, s);
        s.alpha.halo = kAfterSmooth;
        each_row(kAfterSmooth, [&](int y) {
            smooth_alpha(params_, sums(y, kAfterSmooth), s.spare.row(y, kAfterSmooth),
                         s.unknown.row(y, kAfterSmooth), s.raw.row(y, kAfterSmooth),
                         s.alpha.row(y, kAfterSmooth), span(kAfterSmooth));
        });
    }

    void clear(Scratch& s) const {
        fold(box_sum, s.alpha, kAround, s.sum_alpha, s);
        s.spare.halo = kBeforeSeen;
        each_row(kBeforeSeen, [&](int y) {
            mark_seen(params_, s.alpha.row(y, kBeforeSeen), s.sum_alpha.row(y, kBeforeSeen),
                      s.variance.row(y, kBeforeSeen), s.unknown.row(y, kBeforeSeen),
                      s.solid.row(y, kBeforeSeen), s.spare.row(y, kBeforeSeen), span(kBeforeSeen));
        });
        fold(box_sum, s.spare, kSeen, s.sum_mask, s);
        each_row(kBeforeOpaque, [&](int y) {
            pull_to_clear(params_, s.sum_mask.row(y, kBeforeOpaque), s.variance.row(y, kBeforeOpaque),
                          s.unknown.row(y, kBeforeOpaque), s.alpha.row(y, kBeforeOpaque),
                          span(kBeforeOpaque));
        });
    }

    void fill(Scratch& s) const {
        s.spare.halo = kBeforeOpaque;
        each_row(kBeforeOpaque, [&](int y) {
            mark_opaque(params_, s.alpha.row(y, kBeforeOpaque), s.deviation.row(y, kBeforeOpaque),
                        s.unknown.row(y, kBeforeOpaque), s.solid.row(y, kBeforeOpaque),
                        s.spare.row(y, kBeforeOpaque), span(kBeforeOpaque));
        });
        fold(box_sum, s.spare, kOpaque, s.sum_mask, s);
        each_row(0, [&](int y) {
            pull_to_opaque(params_, s.sum_mask.row(y, 0), s.deviation.row(y, 0), s.unknown.row(y, 0),
                           s.alpha.row(y, 0), span(0));
        });
    }

    const FrameScale& scale_;
    const Segmentation& segmentation_;
    const Solution& solution_;
    CleanParams params_;
    Floats& alpha_;
    int left_ = 0;
    int bottom_ = 0;
    std::unique_ptr<Scratch> scratch_;  // too large for a stack
};

}  // namespace

void clean_frame(const FrameScale& scale, const Segmentation& segmentation, const Solution& solution,
                 const CleanParams& params, Floats& alpha, const ParallelLoop& loop) {
    alpha.resize(scale.width, scale.height);
    const int across = (scale.width + kTileWidth - 1) / kTileWidth;
    const int up = (scale.height + kTileHeight - 1) / kTileHeight;
    loop(0, across * up, 2, [&](int begin, int end) {
        Cleaner cleaner(scale, segmentation, solution, params, alpha);
        for (int n = begin; n < end; ++n) cleaner.tile(n % across * kTileWidth, n / across * kTileHeight);
    });
}

}  // namespace unmix
