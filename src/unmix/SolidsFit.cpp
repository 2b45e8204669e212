#include "unmix/SolidsFit.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "unmix/Components.h"
#include "unmix/Hue.h"
#include "unmix/Morphology.h"
#include "unmix/Nearest.h"
#include "unmix/Reduce.h"

namespace unmix {

namespace {

constexpr float kSeed = 0.90f;  // rough opacities: what a region must hold somewhere,
constexpr float kFoot = 0.35f;  // and where its edge begins
constexpr int kSeedSteps = 2;   // of the fine grid
constexpr int kOwnRounds = 2;

// Lengths.
constexpr float kWidest = 10.0f;  // edge that is kept away from
constexpr float kLeastDepth = 1.5f;
constexpr float kOpenSolid = 3.0f;
constexpr float kOpenSource = 10.0f;
constexpr float kInside = 10.0f;  // deeper than this the own colour is looked for,
constexpr float kRim = 12.0f;     // the less so the deeper
constexpr float kAround = 24.0f;
constexpr float kRimOfSpill = 6.0f;

constexpr float kSolidWidths = 2.0f;  // times the edge's width
constexpr float kSourceWidths = 2.7f;
constexpr float kWhite = 1.05f;
constexpr float kLeastLead = 0.02f;
constexpr float kMostSpill = 0.5f;
constexpr float kTaughtTolerance = 0.04f;

class Fit {
  public:
    Fit(const BackingModel& backing, const SolidsSettings& settings, Segmentation& found,
        const ParallelLoop& loop)
        : backing_(backing), settings_(settings), found_(found), loop_(loop) {}

    void run(const Floats& garbage, const Floats& holdout) {
        width_ = means_[0].width();
        height_ = means_[0].height();
        leads();
        Bytes region = find_region(nullptr);
        for (int round = 0; round < kOwnRounds; ++round) {
            if (const Floats own = own_lead(region); !own.empty()) region = find_region(&own);
        }
        keep_from_edges(region);
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
    void each_row(const Visit& visit) const {
        loop_(0, height_, 8, [&](int begin, int end) {
            for (int y = begin; y < end; ++y) visit(y);
        });
    }

    // Leads of plate and backing, and the opacity that no colour can be below.
    void leads() {
        for (Floats* plane : {&lead_, &backing_lead_, &bound_}) plane->resize(width_, height_);
        const auto o = static_cast<std::size_t>(backing_.others[0]);
        const auto p = static_cast<std::size_t>(backing_.others[1]);
        const std::size_t k = screen();
        each_row([&](int y) {
            std::array<std::vector<float>, 3> b;
            for (std::size_t c = 0; c < 3; ++c) {
                b[c].resize(static_cast<std::size_t>(width_));
                between_cells(backing_.coarse[c], 2, y, 0, width_, b[c].data());
            }
            for (int x = 0; x < width_; ++x) {
                const auto n = static_cast<std::size_t>(x);
                const float s[3]{means_[0](x, y), means_[1](x, y), means_[2](x, y)};
                lead_(x, y) = s[k] - std::max(s[o], s[p]);
                backing_lead_(x, y) = std::max(b[k][n] - std::max(b[o][n], b[p][n]), kLeastLead);
                float bound = (b[k][n] - s[k]) / std::max(b[k][n], 0.05f);
                for (std::size_t c = 0; c < 3; ++c) {
                    bound = std::max(bound, (s[c] - b[c][n]) / (kWhite - std::min(b[c][n], 1.0f)));
                }
                bound_(x, y) = bound;
            }
        });
    }

    Bytes find_region(const Floats* own) {
        found_.rough.resize(width_, height_);
        Bytes seeds(width_, height_);
        Bytes grown(width_, height_);
        each_row([&](int y) {
            std::vector<float> line(static_cast<std::size_t>(width_), 0.0f);
            if (own != nullptr) between_cells(*own, 2, y, 0, width_, line.data());
            for (int x = 0; x < width_; ++x) {
                const float lack = std::clamp(line[static_cast<std::size_t>(x)], -backing_lead_(x, y), 0.0f);
                const float clear = (lead_(x, y) - lack) / (backing_lead_(x, y) - lack);
                const float rough = backing_.found ? std::max(1.0f - clear, bound_(x, y)) : 1.0f;
                found_.rough(x, y) = rough;
                seeds(x, y) = rough > kSeed ? 1 : 0;
                grown(x, y) = rough > settings_.solid ? 1 : 0;
            }
        });
        seeds = dilated(eroded(seeds, kSeedSteps), kSeedSteps);
        Plane<std::int32_t> labels;
        const int count = label_components(grown, labels);
        std::vector<std::uint8_t> seeded(static_cast<std::size_t>(count) + 1, 0);
        for (std::size_t i = 0; i < seeds.size(); ++i) {
            if (seeds[i] != 0) seeded[static_cast<std::size_t>(labels[i])] = 1;
        }
        seeded[0] = 0;
        for (std::size_t i = 0; i < grown.size(); ++i) grown[i] = seeded[static_cast<std::size_t>(labels[i])];
        return dilated(eroded(grown, 1), 1);
    }

    // How the inside of the region nearby leads, coarse: the least lacking of it. Empty without an inside.
    Floats own_lead(const Bytes& region) const {
        // A plateau that is half clear must not vouch for itself.
        Bytes opaque(width_, height_);
        for (std::size_t i = 0; i < opaque.size(); ++i) {
            opaque[i] = region[i] != 0 && found_.rough[i] > kSeed ? 1 : 0;
        }
        Floats depth;
        const float most = cells(kInside + 4.0f * kRim);
        distance(opaque, most, depth, loop_);
        const int across = backing_.coarse[0].width();
        const int up = backing_.coarse[0].height();
        Floats weight(across, up);
        Floats weighted(across, up);
        Bytes deep(across, up);
        for (int y = 0; y < up; ++y) {
            for (int x = 0; x < across; ++x) {
                float sum = 0.0f;
                float lead = 0.0f;
                for (int n = 0; n < 4; ++n) {
                    const int fx = std::min(2 * x + n % 2, width_ - 1);
                    const int fy = std::min(2 * y + n / 2, height_ - 1);
                    const float beyond = depth(fx, fy) - cells(kInside);
                    if (!(beyond > 0.0f) || depth(fx, fy) >= most) continue;
                    const float w = std::exp(-beyond / cells(kRim));
                    sum += w;
                    lead += w * lead_(fx, fy);
                }
                weight(x, y) = sum;
                weighted(x, y) = lead;
                deep(x, y) = sum > 0.0f ? 1 : 0;
            }
        }
        if (!any(deep)) return {};
        const auto radius = [&](float length) {
            return std::max(1, static_cast<int>(std::lround(cells(length) / 2.0f)));
        };
        Floats a;
        Floats b;
        box_mean(weighted, radius(kRim), a);
        box_mean(weight, radius(kRim), b);
        Plane<std::int32_t> index;
        nearest(deep, index, nullptr, loop_);
        Floats carried(across, up);
        for (std::size_t i = 0; i < carried.size(); ++i) {
            const auto at = static_cast<std::size_t>(index[i]);
            carried[i] = a[at] / std::max(b[at], 1e-6f);
        }
        box_most(carried, radius(kAround));
        box_mean(carried, radius(kRim), a);
        return a;
    }

    void keep_from_edges(const Bytes& region) {
        Bytes inside(width_, height_);
        Bytes foot(width_, height_);
        for (std::size_t i = 0; i < inside.size(); ++i) {
            inside[i] = found_.rough[i] >= settings_.solid ? 1 : 0;
            foot[i] = found_.rough[i] >= kFoot ? 1 : 0;
        }
        const float deepest = kSourceWidths * kWidest + kLeastDepth + 1.0f;
        Floats in;
        Floats out;
        distance(inside, cells(deepest), in, loop_);
        distance(foot, cells(deepest + kWidest), out, loop_);
        found_.solid.resize(width_, height_);
        found_.source.resize(width_, height_);
        for (std::size_t i = 0; i < in.size(); ++i) {
            const float width = std::min(out[i] - in[i], cells(kWidest));
            const float least = cells(kLeastDepth);
            found_.solid[i] = region[i] != 0 && in[i] > kSolidWidths * width && in[i] > least ? 1 : 0;
            found_.source[i] = region[i] != 0 && in[i] > kSourceWidths * width + least ? 1 : 0;
        }
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
            for (int y = 0; y < height_; ++y) {
                for (int x = 0; x < width_; ++x) {
                    const int at = std::min(x * side + side / 2, matte.width() - 1);
                    const int up = std::min(y * side + side / 2, matte.height() - 1);
                    if (!(matte(at, up) > 0.5f)) continue;
                    found_.solid(x, y) = to;
                    if (to == 0) found_.source(x, y) = 0;
                }
            }
        };
        apply(holdout, 1);
        apply(garbage, 0);
    }

    void measure_spill() {
        Bytes known(width_, height_);
        for (std::size_t i = 0; i < known.size(); ++i) known[i] = found_.solid[i] | found_.source[i];
        Floats depth;
        distance(known, cells(kRimOfSpill) + 1.0f, depth, loop_);
        std::vector<float> spill;
        const auto o = static_cast<std::size_t>(backing_.others[0]);
        const auto p = static_cast<std::size_t>(backing_.others[1]);
        for (int y = 0; y < height_; ++y) {
            for (int x = 0; x < width_; ++x) {
                if (found_.solid(x, y) == 0 || !(depth(x, y) < cells(kRimOfSpill))) continue;
                const int cx = x / 2;
                const int cy = y / 2;
                const auto difference = [&](const Colours& from, int ax, int ay) {
                    return from[screen()](ax, ay) - 0.5f * (from[o](ax, ay) + from[p](ax, ay));
                };
                const float whole = std::max(difference(backing_.coarse, cx, cy), kLeastLead);
                spill.push_back(std::clamp(difference(means_, x, y) / whole, 0.0f, kMostSpill));
            }
        }
        found_.spill = 0.0f;
        if (spill.empty()) return;
        const auto middle = spill.begin() + static_cast<std::ptrdiff_t>(spill.size() / 2);
        std::nth_element(spill.begin(), middle, spill.end());
        found_.spill = *middle;
    }

    const BackingModel& backing_;
    const Colours& means_{backing_.fine};
    const SolidsSettings& settings_;
    Segmentation& found_;
    const ParallelLoop& loop_;
    int width_ = 0;
    int height_ = 0;
    Floats lead_;
    Floats backing_lead_;
    Floats bound_;
};

}  // namespace

void find_solids(const BackingModel& backing, const Floats& garbage, const Floats& holdout,
                 const SolidsSettings& settings, Segmentation& found, const ParallelLoop& loop) {
    Fit(backing, settings, found, loop).run(garbage, holdout);
}

}  // namespace unmix
