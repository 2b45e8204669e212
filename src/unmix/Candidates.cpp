#include "unmix/Candidates.h"

#include <algorithm>
#include <cmath>

#include "unmix/Morphology.h"
#include "unmix/Nearest.h"

namespace unmix {

namespace {

// Lengths.
constexpr float kRim = 12.0f;
constexpr float kLeastDepth = 1.5f;
constexpr float kClusterDepth = 20.0f;
constexpr float kAround = 8.0f;

constexpr float kOwnChroma = 0.05f;      // deviations of a local colour: each channel,
constexpr float kOwnBrightness = 0.05f;  // and all alike
constexpr float kNeutral = 0.45f;
// Beyond its share of the spill, how much of the backing see-through things hold for each step off the usual.
constexpr float kUsualVeil = 0.7f;
constexpr float kVeilAlone = 0.6f;
constexpr float kNeutralChroma = 0.05f;
constexpr float kNeutralBrightness = 0.30f;
// Natural colours scatter from warm to cool, hardly from green to magenta: red against blue.
constexpr float kWarmth = 0.05f;
constexpr float kWarmthDeviation = 0.10f;

constexpr int kClusters = 8;
constexpr std::size_t kFewestCells = 4;

constexpr std::array<std::array<std::size_t, 2>, 6> kPairs{{{0, 0}, {0, 1}, {0, 2}, {1, 1}, {1, 2}, {2, 2}}};

CommonColour neutral(float veil) {
    const std::array<float, 3> tone{1.0f + kWarmth, 1.0f, 1.0f - kWarmth};
    constexpr std::array<float, 3> kWarm{1.0f, 0.0f, -1.0f};
    CommonColour colour{};
    for (std::size_t c = 0; c < 3; ++c) colour.mean[c] = kNeutral * tone[c];
    colour.share = veil;
    for (std::size_t n = 0; n < kPairs.size(); ++n) {
        const auto [i, j] = kPairs[n];
        colour.covariance[n] = (i == j ? kNeutralChroma * kNeutralChroma : 0.0f) +
                               kNeutralBrightness * kNeutralBrightness * tone[i] * tone[j] +
                               kWarmthDeviation * kWarmthDeviation * kWarm[i] * kWarm[j];
    }
    return colour;
}

float own_spread(std::size_t n) {
    return (kPairs[n][0] == kPairs[n][1] ? kOwnChroma * kOwnChroma : 0.0f) + kOwnBrightness * kOwnBrightness;
}

constexpr float kTaughtChroma = 0.03f;
constexpr float kTaughtBrightness = 0.25f;  // of its own
constexpr float kLeastTaught = 0.05f;       // alpha

// The colour that, so opaque before the usual backing, looks as it was pointed at.
CommonColour taught(const SeenThrough& seen, const std::array<float, 3>& backing) {
    const float alpha = std::clamp(seen.alpha, kLeastTaught, 1.0f);
    CommonColour colour{};
    for (std::size_t c = 0; c < 3; ++c) {
        colour.mean[c] = std::clamp((seen.colour[c] - (1.0f - alpha) * backing[c]) / alpha, 0.0f, 1.5f);
    }
    for (std::size_t n = 0; n < kPairs.size(); ++n) {
        const auto [i, j] = kPairs[n];
        colour.covariance[n] = (i == j ? kTaughtChroma * kTaughtChroma : 0.0f) +
                               kTaughtBrightness * kTaughtBrightness * colour.mean[i] * colour.mean[j];
    }
    return colour;
}

std::array<float, 3> usual_backing(const BackingModel& backing) {
    std::array<float, 3> mean{};
    for (std::size_t c = 0; c < 3; ++c) {
        double sum = 0.0;
        for (const float v : backing.coarse[c]) sum += static_cast<double>(v);
        mean[c] = static_cast<float>(sum / static_cast<double>(backing.coarse[c].size()));
    }
    return mean;
}

// For what is one of several things done at once.
const ParallelLoop kAlone = [](int begin, int end, int, const auto& body) { body(begin, end); };

class Finder {
  public:
    Finder(const BackingModel& backing, const Segmentation& segmentation, const ParallelLoop& loop)
        : backing_(backing),
          segmentation_(segmentation),
          loop_(loop),
          width_(backing.coarse[0].width()),
          height_(backing.coarse[0].height()) {}

    void run(const CandidateSettings& settings, Candidates& found) {
        find_rims();
        if (!any(lends_)) return;
        find_nearest(found.nearest);
        find_groups(settings.rims, found);
    }

    std::vector<ColourGroup> rims() {
        find_rims();
        std::vector<ColourGroup> groups;
        for (const Group& group : group_cells(shallow_cells())) groups.push_back(group.colours);
        return groups;
    }

  private:
    float fine_cells(float length) const {
        return length * backing_.scale.pixels / static_cast<float>(backing_.scale.fine());
    }
    int coarse_cells(float length) const {
        const float cells = length * backing_.scale.pixels / static_cast<float>(backing_.scale.coarse());
        return std::max(1, static_cast<int>(std::lround(cells)));
    }

    // The weight of each coarse cell as a source of colours.
    void find_rims() {
        Bytes inside(segmentation_.solid.width(), segmentation_.solid.height());
        for (std::size_t i = 0; i < inside.size(); ++i) {
            inside[i] = segmentation_.solid[i] | segmentation_.source[i];
        }
        Floats depth;
        distance(inside, fine_cells(5.0f * kRim), depth, loop_);
        weight_.resize(width_, height_);
        lends_.resize(width_, height_);
        shallow_.resize(width_, height_);
        loop_(0, height_, 8, [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                for (int x = 0; x < width_; ++x) {
                    float sum = 0.0f;
                    bool all = true;
                    float deepest = 0.0f;
                    for (int n = 0; n < 4; ++n) {
                        const int fx = std::min(2 * x + n % 2, inside.width() - 1);
                        const int fy = std::min(2 * y + n / 2, inside.height() - 1);
                        const float d = depth(fx, fy);
                        const bool lends = segmentation_.source(fx, fy) != 0 && d > fine_cells(kLeastDepth);
                        all = all && lends;
                        deepest = std::max(deepest, d);
                        sum += d;
                    }
                    weight_(x, y) = all ? std::exp(-0.25f * sum / fine_cells(kRim)) : 0.0f;
                    lends_(x, y) = all ? 1 : 0;
                    shallow_(x, y) = all && deepest < fine_cells(kClusterDepth) ? 1 : 0;
                }
            }
        });
    }

    // Sums over the pixels of a cell: three colours and six products.
    std::array<float, 9> moments(int x, int y) const {
        const int side = backing_.scale.coarse();
        const int right = std::min((x + 1) * side, backing_.scale.width);
        const int top = std::min((y + 1) * side, backing_.scale.height);
        std::array<float, 9> sums{};
        for (int py = y * side; py < top; ++py) {
            for (int px = x * side; px < right; ++px) {
                const std::array v{backing_.light[0](px, py), backing_.light[1](px, py),
                                   backing_.light[2](px, py)};
                for (std::size_t c = 0; c < 3; ++c) sums[c] += v[c];
                for (std::size_t n = 0; n < 6; ++n) sums[3 + n] += v[kPairs[n][0]] * v[kPairs[n][1]];
            }
        }
        const auto count = static_cast<float>((right - x * side) * (top - y * side));
        for (float& v : sums) v /= count;
        return sums;
    }

    void find_nearest(NearColours& found) {
        Plane<std::int32_t> index;
        Floats away;
        nearest(lends_, index, &away, loop_);
        std::array<Floats, 9> sums;
        for (Floats& plane : sums) plane.resize(width_, height_);
        loop_(0, height_, 4, [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                for (int x = 0; x < width_; ++x) {
                    const float w = weight_(x, y);
                    const auto cell = w > 0.0f ? moments(x, y) : std::array<float, 9>{};
                    for (std::size_t n = 0; n < 9; ++n) sums[n](x, y) = w * cell[n];
                }
            }
        });
        const int radius = coarse_cells(kAround);
        Floats mass;
        box_mean(weight_, radius, mass, loop_);
        loop_(0, 9, 1, [&](int begin, int end) {
            for (auto n = static_cast<std::size_t>(begin); n < static_cast<std::size_t>(end); ++n) {
                Floats mean;
                box_mean(sums[n], radius, mean, kAlone);
                for (std::size_t i = 0; i < mean.size(); ++i) {
                    const auto at = static_cast<std::size_t>(index[i]);
                    sums[n][i] = mean[at] / std::max(mass[at], 1e-6f);
                }
                box_mean(sums[n], radius, mean, kAlone);
                sums[n] = std::move(mean);
            }
        });
        found.resize(away.size());
        const auto side = static_cast<float>(backing_.scale.coarse());
        loop_(0, static_cast<int>(found.size()), 8192, [&](int begin, int end) {
            for (auto i = static_cast<std::size_t>(begin); i < static_cast<std::size_t>(end); ++i) {
                NearColour& colour = found[i];
                for (std::size_t c = 0; c < 3; ++c) colour.mean[c] = sums[c][i];
                for (std::size_t n = 0; n < 6; ++n) {
                    colour.covariance[n] = sums[3 + n][i] -
                                           colour.mean[kPairs[n][0]] * colour.mean[kPairs[n][1]] +
                                           own_spread(n);
                }
                colour.away = side * away[i];
            }
        });
    }

    struct Group {
        std::vector<std::size_t> cells;
        ColourGroup colours;
    };

    void find_groups(const std::vector<ColourGroup>* shot, Candidates& found) const {
        const std::vector<std::size_t> cells = shallow_cells();
        const std::vector<Group> groups = shot != nullptr ? cells_of(*shot, cells) : group_cells(cells);
        found.clusters.resize(groups.size());
        found.away.resize(groups.size());
        loop_(0, static_cast<int>(groups.size()), 1, [&](int begin, int end) {
            for (auto k = static_cast<std::size_t>(begin); k < static_cast<std::size_t>(end); ++k) {
                found.clusters[k] = candidate(groups[k].colours);
                measure_away(groups[k].cells, found.away[k]);
            }
        });
    }

    std::vector<std::size_t> shallow_cells() const {
        std::vector<std::size_t> cells;
        for (std::size_t i = 0; i < shallow_.size(); ++i) {
            if (shallow_[i] != 0) cells.push_back(i);
        }
        return cells;
    }

    std::vector<std::array<float, 3>> colours_of(const std::vector<std::size_t>& cells) const {
        std::vector<std::array<float, 3>> colours;
        colours.reserve(cells.size());
        for (const std::size_t i : cells) {
            colours.push_back({backing_.means[0][i], backing_.means[1][i], backing_.means[2][i]});
        }
        return colours;
    }

    static std::vector<Group> groups_of(const Clusters& clusters, const std::vector<std::size_t>& cells) {
        std::vector<Group> groups(clusters.means.size());
        for (std::size_t i = 0; i < cells.size(); ++i) {
            groups[static_cast<std::size_t>(clusters.of[i])].cells.push_back(cells[i]);
        }
        return groups;
    }

    static void leave_out_small(std::vector<Group>& groups) {
        std::erase_if(groups, [](const Group& group) { return group.cells.size() < kFewestCells; });
    }

    std::vector<Group> group_cells(const std::vector<std::size_t>& cells) const {
        std::vector<Group> groups = groups_of(find_clusters(colours_of(cells), kClusters), cells);
        leave_out_small(groups);
        for (Group& group : groups) group.colours = described(colours_of(group.cells));
        return groups;
    }

    // Groups that are known beforehand, with the cells that are nearest to them.
    std::vector<Group> cells_of(const std::vector<ColourGroup>& known,
                                const std::vector<std::size_t>& cells) const {
        std::vector<std::array<double, 3>> means;
        means.reserve(known.size());
        for (const ColourGroup& colours : known) means.push_back(in_light_of_frame(colours).mean);
        std::vector<Group> groups = groups_of(nearest_clusters(colours_of(cells), std::move(means)), cells);
        for (std::size_t k = 0; k < groups.size(); ++k) groups[k].colours = in_light_of_frame(known[k]);
        leave_out_small(groups);
        return groups;
    }

    // The subject stands in the light that the backing shows to flicker.
    ColourGroup in_light_of_frame(ColourGroup group) const {
        const auto gain = [&](std::size_t c) { return static_cast<double>(backing_.gain[c]); };
        for (std::size_t c = 0; c < 3; ++c) group.mean[c] *= gain(c);
        for (std::size_t n = 0; n < 6; ++n) group.covariance[n] *= gain(kPairs[n][0]) * gain(kPairs[n][1]);
        return group;
    }

    static ColourGroup described(const std::vector<std::array<float, 3>>& samples) {
        ColourGroup group;
        const double count = group.count = static_cast<double>(samples.size());
        std::array<double, 3>& mean = group.mean;
        for (const auto& sample : samples) {
            for (std::size_t c = 0; c < 3; ++c) mean[c] += static_cast<double>(sample[c]) / count;
        }
        for (const auto& sample : samples) {
            for (std::size_t n = 0; n < 6; ++n) {
                group.covariance[n] += (static_cast<double>(sample[kPairs[n][0]]) - mean[kPairs[n][0]]) *
                                       (static_cast<double>(sample[kPairs[n][1]]) - mean[kPairs[n][1]]) /
                                       (count - 1.0);
            }
        }
        return group;
    }

    static CommonColour candidate(const ColourGroup& group) {
        CommonColour colour{};
        for (std::size_t c = 0; c < 3; ++c) colour.mean[c] = static_cast<float>(group.mean[c]);
        for (std::size_t n = 0; n < 6; ++n) {
            colour.covariance[n] = static_cast<float>(group.covariance[n]) + own_spread(n);
        }
        return colour;
    }

    void measure_away(const std::vector<std::size_t>& cells, Floats& away) const {
        Bytes here((width_ + 1) / 2, (height_ + 1) / 2);
        here.fill(0);
        for (const std::size_t i : cells) {
            const auto x = static_cast<int>(i) % width_;
            const auto y = static_cast<int>(i) / width_;
            here(x / 2, y / 2) = 1;
        }
        Plane<std::int32_t> index;
        nearest(here, index, &away, kAlone);
        const auto side = static_cast<float>(2 * backing_.scale.coarse());
        for (float& v : away) v *= side;
    }

    const BackingModel& backing_;
    const Segmentation& segmentation_;
    const ParallelLoop& loop_;
    int width_;
    int height_;
    Floats weight_;
    Bytes lends_;
    Bytes shallow_;
};

}  // namespace

std::vector<ColourGroup> find_rims(const BackingModel& backing, const Segmentation& segmentation,
                                   const ParallelLoop& loop) {
    return Finder(backing, segmentation, loop).rims();
}

Candidates find_candidates(const BackingModel& backing, const Segmentation& segmentation,
                           const CandidateSettings& settings, const ParallelLoop& loop) {
    Candidates found;
    found.neutral = neutral(settings.veil * segmentation.spill + kVeilAlone * (settings.veil - kUsualVeil));
    Finder(backing, segmentation, loop).run(settings, found);
    for (const SeenThrough& seen : settings.see_through) {
        found.clusters.push_back(taught(seen, usual_backing(backing)));
        Floats& away = found.away.emplace_back((backing.coarse[0].width() + 1) / 2,
                                               (backing.coarse[0].height() + 1) / 2);
        away.fill(0.0f);
    }
    return found;
}

}  // namespace unmix
