#include "unmix/SolidsFit.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "unmix/Morphology.h"
#include "unmix/Quantile.h"
#include "unmix/Region.h"

namespace unmix {

namespace {

constexpr float kFoot = 0.35f;  // rough opacity where a region's edge begins
constexpr int kOwnRounds = 2;

// Lengths.
constexpr float kWidest = 10.0f;  // edge that is kept away from
constexpr float kLeastDepth = 1.5f;
constexpr float kOpenSolid = 3.0f;
constexpr float kOpenSource = 10.0f;
constexpr float kRimOfSpill = 6.0f;
constexpr float kThinnestRim = 1.5f;  // cells

constexpr float kSolidWidths = 2.0f;  // times the edge's width
constexpr float kSourceWidths = 2.7f;
constexpr float kLeastLead = 0.02f;
constexpr float kMostSpill = 0.5f;
constexpr float kTaughtTolerance = 0.04f;

class Fit {
  public:
    Fit(const BackingModel& backing, const SolidsSettings& settings, Segmentation& found,
        const ParallelLoop& loop)
        : backing_(backing), settings_(settings), found_(found), loop_(loop) {}

    void run(const Floats& garbage, const Floats& holdout) {
        keep_from_edges(find_region());
        teach();
        mask_with(garbage, holdout);
        measure_spill();
    }

  private:
    float cells(float length) const {
        return length * backing_.scale.pixels / static_cast<float>(backing_.scale.fine());
    }
    std::size_t screen() const { return static_cast<std::size_t>(backing_.screen); }

    template <class Visit>
    void each_cell(const Visit& visit) const {
        loop_(0, height_, 16, [&](int begin, int end) {
            const auto width = static_cast<std::size_t>(width_);
            for (std::size_t i = width * static_cast<std::size_t>(begin);
                 i < width * static_cast<std::size_t>(end); ++i) {
                visit(i);
            }
        });
    }

    Bytes find_region() {
        Region coarse(backing_, Region::Grid::kCoarse, loop_);
        Floats own;
        for (int round = 0; round < kOwnRounds; ++round) {
            coarse.find(own.empty() ? nullptr : &own, settings_.solid);
            own = own_lead(backing_, coarse, loop_);
        }
        Region fine(backing_, Region::Grid::kFine, loop_);
        fine.find(own.empty() ? nullptr : &own, settings_.solid);
        found_.rough = fine.take_rough();
        return fine.region();
    }

    void keep_from_edges(const Bytes& region) {
        Bytes inside(width_, height_);
        Bytes foot(width_, height_);
        each_cell([&](std::size_t i) {
            inside[i] = found_.rough[i] >= settings_.solid ? 1 : 0;
            foot[i] = found_.rough[i] >= kFoot ? 1 : 0;
        });
        const float deepest = kSourceWidths * kWidest + kLeastDepth + 1.0f;
        Floats in;
        Floats out;
        distance(inside, cells(deepest), in, loop_);
        distance(foot, cells(deepest + kWidest), out, loop_);
        found_.solid.resize(width_, height_);
        found_.source.resize(width_, height_);
        each_cell([&](std::size_t i) {
            const float width = std::min(out[i] - in[i], cells(kWidest));
            const float least = cells(kLeastDepth);
            found_.solid[i] = region[i] != 0 && in[i] > kSolidWidths * width && in[i] > least ? 1 : 0;
            found_.source[i] = region[i] != 0 && in[i] > kSourceWidths * width + least ? 1 : 0;
        });
        found_.solid = opened(found_.solid, cells(kOpenSolid), loop_);
        for (std::size_t i = 0; i < in.size(); ++i) found_.source[i] &= found_.solid[i];
        found_.source = opened(found_.source, cells(kOpenSource), loop_);
    }

    void teach() {
        for (const auto& colour : settings_.taught) {
            for (std::size_t i = 0; i < found_.solid.size(); ++i) {
                bool same = true;
                for (std::size_t c = 0; c < 3; ++c) {
                    same = same && std::abs(means_[c][i] - colour[c]) < kTaughtTolerance * (0.5f + colour[c]);
                }
                if (same) found_.solid[i] = 1;
            }
        }
    }

    void mask_with(const Floats& garbage, const Floats& holdout) {
        const int side = backing_.scale.fine();
        const auto apply = [&](const Floats& matte, std::uint8_t to) {
            if (matte.empty()) return;
            loop_(0, height_, 16, [&](int begin, int end) {
                for (int y = begin; y < end; ++y) {
                    const float* const row = matte.row(std::min(y * side + side / 2, matte.height() - 1));
                    for (int x = 0; x < width_; ++x) {
                        if (!(row[std::min(x * side + side / 2, matte.width() - 1)] > 0.5f)) continue;
                        found_.solid(x, y) = to;
                        if (to == 0) found_.source(x, y) = 0;
                    }
                }
            });
        };
        apply(holdout, 1);
        apply(garbage, 0);
    }

    void measure_spill() {
        Bytes known(width_, height_);
        for (std::size_t i = 0; i < known.size(); ++i) known[i] = found_.solid[i] | found_.source[i];
        Floats depth;
        const float rim = std::max(cells(kRimOfSpill), kThinnestRim);
        distance(known, rim + 1.0f, depth, loop_);
        std::vector<float> spill;
        const auto o = static_cast<std::size_t>(backing_.others[0]);
        const auto p = static_cast<std::size_t>(backing_.others[1]);
        for (int y = 0; y < height_; y += 2) {
            for (int x = 0; x < width_; x += 2) {
                if (found_.solid(x, y) == 0 || !(depth(x, y) < rim)) continue;
                const int cx = x / 2;
                const int cy = y / 2;
                const auto difference = [&](const Colours& from, int ax, int ay) {
                    return from[screen()](ax, ay) - 0.5f * (from[o](ax, ay) + from[p](ax, ay));
                };
                const float whole = std::max(difference(backing_.coarse, cx, cy), kLeastLead);
                spill.push_back(std::clamp(difference(means_, x, y) / whole, 0.0f, kMostSpill));
            }
        }
        found_.spill = spill.empty() ? 0.0f : median(std::move(spill));
    }

    const BackingModel& backing_;
    const Colours& means_{backing_.fine};
    const SolidsSettings& settings_;
    Segmentation& found_;
    const ParallelLoop& loop_;
    int width_ = means_[0].width();
    int height_ = means_[0].height();
};

}  // namespace

void find_solids(const BackingModel& backing, const Floats& garbage, const Floats& holdout,
                 const SolidsSettings& settings, Segmentation& found, const ParallelLoop& loop) {
    Fit(backing, settings, found, loop).run(garbage, holdout);
}

}  // namespace unmix
