#include "unmix/SolveFrame.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "lanes/FloatLogExp.h"
#include "unmix/BoxKernel.h"
#include "unmix/ChoiceKernel.h"
#include "unmix/Reduce.h"

namespace unmix {

namespace {

// A tile and the two neighbourhoods, one in the other, that its choice averages costs over.
constexpr int kTileWidth = 128;
constexpr int kTileHeight = 48;
constexpr int kReach = 2;  // of one average
constexpr int kHalo = 2 * kReach;
constexpr int kWide = kTileWidth + 2 * kHalo;
constexpr int kHigh = kTileHeight + 2 * kHalo;
constexpr std::size_t kMost = static_cast<std::size_t>(kWide) * kHigh;

constexpr float kLeadOfNearest = 15.0f;  // what a cluster's cost has to make up for beside a solid,
constexpr float kNearness = 8.0f;        // the less so the farther: a length
constexpr float kPixelsPerCost = 40.0f;  // a length
constexpr float kMostLead = 20.0f;
constexpr float kSpillOfRim = 0.04f;  // of the backing that a rim holds beyond what lies further in
constexpr float kNeutral = 1.0f;
constexpr float kNearest = 2.0f;

using Line = std::array<float, kMost>;

struct SolvedLines {
    Line alpha, cost, by_noise, variance;
    Solved pointers() { return {alpha.data(), cost.data(), by_noise.data(), variance.data()}; }
};

// What is worked out for the unknown pixels of a tile, packed together.
struct Scratch {
    std::array<Line, 3> beyond, backing;
    std::array<Line, 9> own;
    Line guess, away, near, mean, best, number, lead;
    SolvedLines neutral, chosen, other;
    Line spread, sums, column;
    Line share;                                       // one over how many unknown pixels an average is of
    std::array<std::int32_t, kMost> place;            // in the tile with its halo
    std::array<std::int32_t, kMost> inner;            // where its average is; of the outermost somewhere
    std::array<std::int32_t, kMost> cell, wide_cell;  // coarse, and of twice the side
};

float log_determinant(const Covariance& n) {
    const float det = n[0] * (n[3] * n[5] - n[4] * n[4]) + n[1] * (n[2] * n[4] - n[1] * n[5]) +
                      n[2] * (n[1] * n[4] - n[2] * n[3]);
    return std::log(std::max(det, 1e-20f));
}

class Solver {
  public:
    Solver(const BackingModel& backing, const Segmentation& segmentation, const Candidates& candidates,
           Solution& solution)
        : backing_(backing),
          segmentation_(segmentation),
          candidates_(candidates),
          solution_(solution),
          noise_{backing.noise},
          cost_of_noise_(log_determinant(backing.noise)) {}

    void tile(int left, int bottom) {
        left_ = left;
        bottom_ = bottom;
        write_known();
        if (!has_unknown()) return;
        Scratch& s = scratch();
        gather(s);
        solve_common(noise_, pixels(s), candidates_.neutral, s.neutral.pointers(), count_);
        const bool solids = !candidates_.nearest.empty();
        if (solids) {
            solve_nearest(s);
        } else {
            start_from_neutral(s);
        }
        try_clusters(s);
        if (solids) mix(s);
        write(s, s.chosen);
    }

  private:
    Scratch& scratch() {
        if (!scratch_) scratch_ = std::make_unique_for_overwrite<Scratch>();
        return *scratch_;
    }
    UnmixPixels pixels(const Scratch& s) const {
        return {{s.beyond[0].data(), s.beyond[1].data(), s.beyond[2].data()},
                {s.backing[0].data(), s.backing[1].data(), s.backing[2].data()},
                s.guess.data()};
    }
    static ChoiceRows choice(Scratch& s) { return {s.best.data(), s.chosen.pointers(), s.number.data()}; }
    float pixels_of(float length) const { return length * backing_.scale.pixels; }

    void write_known() {
        const int side = backing_.scale.fine();
        const int right = std::min(left_ + kTileWidth, backing_.scale.width);
        const int top = std::min(bottom_ + kTileHeight, backing_.scale.height);
        for (int y = bottom_; y < top; ++y) {
            const std::uint8_t* const solid = segmentation_.solid.row(y / side);
            repeat_cells(solid, side, left_, right, solution_.alpha.row(y) + left_);
            std::fill(solution_.variance.row(y) + left_, solution_.variance.row(y) + right, 0.0f);
            std::fill(solution_.deviation.row(y) + left_, solution_.deviation.row(y) + right, 0.0f);
            std::fill(solution_.candidate.row(y) + left_, solution_.candidate.row(y) + right,
                      std::uint8_t{0});
        }
    }

    bool has_unknown() const {
        const int right = std::min(left_ + kTileWidth, backing_.scale.width);
        const int top = std::min(bottom_ + kTileHeight, backing_.scale.height);
        bool any = false;
        for (int y = bottom_; y < top && !any; ++y) {
            const std::uint8_t* const unknown = segmentation_.unknown.row(y);
            any = std::any_of(unknown + left_, unknown + right, [](std::uint8_t v) { return v != 0; });
        }
        return any;
    }

    // Packs the unknown pixels of the tile and its halo.
    void gather(Scratch& s) {
        const int x0 = std::max(left_ - kHalo, 0);
        const int x1 = std::min(left_ + kTileWidth + kHalo, backing_.scale.width);
        const int y1 = std::min(bottom_ + kTileHeight + kHalo, backing_.scale.height);
        std::array<std::array<float, kWide>, 3> line{};
        std::size_t n = 0;
        for (int y = std::max(bottom_ - kHalo, 0); y < y1; ++y) {
            const std::uint8_t* const unknown = segmentation_.unknown.row(y);
            if (std::none_of(unknown + x0, unknown + x1, [](std::uint8_t v) { return v != 0; })) continue;
            backing_.row(y, x0, x1, {line[0].data(), line[1].data(), line[2].data()});
            const int row = (y - bottom_ + kHalo) * kWide;
            for (int x = x0; x < x1; ++x) {
                if (unknown[x] == 0) continue;
                s.place[n] = row + x - left_ + kHalo;
                for (std::size_t c = 0; c < 3; ++c) {
                    const float b = line[c][static_cast<std::size_t>(x - x0)];
                    s.backing[c][n] = b;
                    s.beyond[c][n] = backing_.light[c](x, y) - b;
                }
                ++n;
            }
        }
        count_ = n;
        guess(s);
        locate(s);
    }

    // The colour difference against the mean of the others.
    void guess(Scratch& s) {
        const auto k = static_cast<std::size_t>(backing_.screen);
        const auto o = static_cast<std::size_t>(backing_.others[0]);
        const auto p = static_cast<std::size_t>(backing_.others[1]);
        for (std::size_t i = 0; i < count_; ++i) {
            const float backing = s.backing[k][i] - 0.5f * (s.backing[o][i] + s.backing[p][i]);
            const float beyond = s.beyond[k][i] - 0.5f * (s.beyond[o][i] + s.beyond[p][i]);
            s.guess[i] = std::clamp(1.0f - (backing + beyond) / std::max(backing, 0.02f), 0.0f, 1.0f);
        }
    }

    // Where each pixel's average and cells are. What lies within `kReach` of the halo's edge gets no mean of
    // its own, and is not looked at again.
    void locate(Scratch& s) {
        constexpr int kInner = kWide - 2 * kReach;
        const int side = backing_.scale.coarse();
        std::array<int, kWide> column{};
        std::array<int, kHigh> row{};
        for (int x = 0; x < kWide; ++x) column[static_cast<std::size_t>(x)] = (left_ - kHalo + x) / side;
        for (int y = 0; y < kHigh; ++y) row[static_cast<std::size_t>(y)] = (bottom_ - kHalo + y) / side;
        const int across = backing_.coarse[0].width();
        std::ranges::fill(s.spread, 0.0f);
        for (std::size_t i = 0; i < count_; ++i) {
            const int x = s.place[i] % kWide;
            const int y = s.place[i] / kWide;
            const int cx = column[static_cast<std::size_t>(x)];
            const int cy = row[static_cast<std::size_t>(y)];
            s.cell[i] = cy * across + cx;
            s.wide_cell[i] = cy / 2 * ((across + 1) / 2) + cx / 2;
            s.inner[i] = std::clamp(y - kReach, 0, kHigh - 2 * kReach - 1) * kInner +
                         std::clamp(x - kReach, 0, kInner - 1);
            s.share[i] = 1.0f;
        }
        average(s, s.share, 1.0f, s.mean);
        for (std::size_t i = 0; i < count_; ++i) s.share[i] = 1.0f / std::max(s.mean[i], 1.0f);
    }

    // The mean of `values`, from -limit to limit each, over the unknown pixels around each.
    void average(Scratch& s, const Line& values, float limit, Line& means) {
        scatter_limited(values.data(), limit, s.place.data(), s.spread.data(), count_);
        box_sum(s.spread.data(), kReach, s.column.data(), s.sums.data(), kWide - 2 * kReach,
                kHigh - 2 * kReach);
        gather_means(s.sums.data(), s.inner.data(), s.share.data(), means.data(), count_);
    }

    void solve_nearest(Scratch& s) {
        const float per_pixel = -1.0f / pixels_of(kNearness);
        for (std::size_t i = 0; i < count_; ++i) {
            const NearColour& colour = candidates_.nearest[static_cast<std::size_t>(s.cell[i])];
            for (std::size_t c = 0; c < 3; ++c) {
                s.own[c][i] = colour.mean[c] + kSpillOfRim * s.backing[c][i];
            }
            for (std::size_t q = 0; q < 6; ++q) s.own[3 + q][i] = colour.covariance[q];
            s.near[i] = kernel::float_exp(colour.away * per_pixel);
        }
        OwnColours colours{};
        for (std::size_t c = 0; c < 3; ++c) colours.mean[c] = s.own[c].data();
        for (std::size_t q = 0; q < 6; ++q) colours.covariance[q] = s.own[3 + q].data();
        solve_own(noise_, pixels(s), colours, s.chosen.pointers(), count_);
        std::fill_n(s.number.begin(), count_, kNearest);
        average(s, s.chosen.cost, kMostCost, s.best);
        for (std::size_t i = 0; i < count_; ++i) s.best[i] -= kLeadOfNearest * s.near[i];
        std::copy_n(s.chosen.alpha.begin(), count_, s.guess.begin());
    }

    void start_from_neutral(Scratch& s) {
        s.chosen = s.neutral;
        std::fill_n(s.number.begin(), count_, kNeutral);
        average(s, s.chosen.cost, kMostCost, s.best);
    }

    void mix(Scratch& s) {
        for (std::size_t i = 0; i < count_; ++i) s.lead[i] = s.neutral.cost[i] - s.chosen.cost[i];
        average(s, s.lead, kMostLead, s.mean);
        mix_neutral(s.neutral.pointers(), s.mean.data(), s.near.data(), choice(s), count_);
    }

    void try_clusters(Scratch& s) {
        const float per_pixel = 1.0f / pixels_of(kPixelsPerCost);
        for (std::size_t k = 0; k < candidates_.clusters.size(); ++k) {
            const Floats& away = candidates_.away[k];
            const float least =
                gather_scaled(away.begin(), s.wide_cell.data(), per_pixel, s.away.data(), count_);
            // No cost is below that of noise alone.
            if (cost_of_noise_ + least >= greatest(s.best.data(), count_)) continue;
            solve_common(noise_, pixels(s), candidates_.clusters[k], s.other.pointers(), count_);
            average(s, s.other.cost, kMostCost, s.mean);
            take_better(s.other.pointers(), s.mean.data(), s.away.data(),
                        kNearest + 1.0f + static_cast<float>(k), choice(s), count_);
        }
    }

    void write(const Scratch& s, const SolvedLines& from) {
        for (std::size_t i = 0; i < count_; ++i) {
            const int x = s.place[i] % kWide - kHalo;
            const int y = s.place[i] / kWide - kHalo;
            if (x < 0 || y < 0 || x >= kTileWidth || y >= kTileHeight) continue;
            solution_.alpha(left_ + x, bottom_ + y) = from.alpha[i];
            solution_.variance(left_ + x, bottom_ + y) = from.by_noise[i];
            solution_.deviation(left_ + x, bottom_ + y) = std::sqrt(from.variance[i]);
            solution_.candidate(left_ + x, bottom_ + y) = static_cast<std::uint8_t>(s.number[i]);
        }
    }

    const BackingModel& backing_;
    const Segmentation& segmentation_;
    const Candidates& candidates_;
    Solution& solution_;
    UnmixNoise noise_;
    float cost_of_noise_;
    int left_ = 0;
    int bottom_ = 0;
    std::unique_ptr<Scratch> scratch_;  // too large for a stack
    std::size_t count_ = 0;
};

}  // namespace

void solve_frame(const BackingModel& backing, const Segmentation& segmentation, const Candidates& candidates,
                 Solution& solution, const ParallelLoop& loop) {
    const int width = backing.scale.width;
    const int height = backing.scale.height;
    for (Floats* plane : {&solution.alpha, &solution.variance, &solution.deviation})
        plane->resize(width, height);
    solution.candidate.resize(width, height);
    const int across = (width + kTileWidth - 1) / kTileWidth;
    const int up = (height + kTileHeight - 1) / kTileHeight;
    loop(0, up * across, 4, [&](int begin, int end) {
        Solver solver(backing, segmentation, candidates, solution);
        for (int n = begin; n < end; ++n) solver.tile(n % across * kTileWidth, n / across * kTileHeight);
    });
}

}  // namespace unmix
