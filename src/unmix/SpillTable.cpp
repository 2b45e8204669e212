#include "unmix/SpillTable.h"

#include <algorithm>
#include <cmath>

#include "unmix/Morphology.h"

namespace unmix {

namespace {

using G = SpillGrid;

constexpr float kOpaque = 0.98f;
constexpr float kDeepest = 60.0f;         // a length
constexpr float kBright = 0.3f;           // brighter colours count no more than this
constexpr double kNeutral = 0.02 * 0.02;  // weight of what is known beforehand: own colours are near neutral
constexpr double kNeutralDeviation = 0.03;
constexpr double kNoise = 0.02;  // of rel

using Histogram = std::vector<float>;

std::size_t at(int hue, int level, int rel) {
    const int place = (hue * G::kLevels + level) * G::kRels + rel;
    return static_cast<std::size_t>(place);
}

float rel_of(int n) {
    return G::kLowRel + (G::kHighRel - G::kLowRel) * static_cast<float>(n) / static_cast<float>(G::kRels - 1);
}

int rounded(float v, int count) {
    return static_cast<int>(std::lround(std::clamp(v, 0.0f, static_cast<float>(count - 1))));
}

class Learner {
  public:
    explicit Learner(const BackingModel& backing, Histogram counts = {})
        : backing_(backing), counts_(std::move(counts)) {
        counts_.resize(G::kSize, 0.0f);
    }

    const Histogram& counts() const { return counts_; }

    void add(const std::array<float, 3>& colour, float weight) {
        const float first = colour[static_cast<std::size_t>(backing_.others[0])];
        const float second = colour[static_cast<std::size_t>(backing_.others[1])];
        const float sum = first + second;
        // What is broken teaches nothing.
        if (!std::isfinite(sum + colour[static_cast<std::size_t>(backing_.screen)])) return;
        const float rel =
            (colour[static_cast<std::size_t>(backing_.screen)] - 0.5f * sum) / std::max(sum, 0.02f);
        const float hue = (first + 0.01f) / std::max(sum + 0.02f, 1e-4f);
        const int h = rounded((hue - G::kLowHue) / (G::kHighHue - G::kLowHue) * (G::kHues - 1), G::kHues);
        const int l =
            rounded(std::sqrt(std::clamp(sum / G::kBrightest, 0.0f, 1.0f)) * (G::kLevels - 1), G::kLevels);
        const int r = rounded((rel - G::kLowRel) / (G::kHighRel - G::kLowRel) * (G::kRels - 1), G::kRels);
        counts_[at(h, l, r)] += weight * std::clamp(sum, 0.0f, kBright);
    }

    void add_solids(const Floats& alpha, const ParallelLoop& loop) {
        const FrameScale& scale = backing_.scale;
        const int side = scale.coarse();
        const int width = backing_.means[0].width();
        const int height = backing_.means[0].height();
        Bytes opaque(width, height);
        loop(0, height, 8, [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                for (int x = 0; x < width; ++x) {
                    bool all = true;
                    for (int py = y * side; py < std::min((y + 1) * side, scale.height); ++py) {
                        const float* const row = alpha.row(py);
                        for (int px = x * side; px < std::min((x + 1) * side, scale.width); ++px) {
                            all = all && row[px] > kOpaque;
                        }
                    }
                    opaque(x, y) = all ? 1 : 0;
                }
            }
        });
        Floats depth;
        const float deepest = kDeepest * scale.pixels / static_cast<float>(side);
        distance(opaque, deepest, depth, loop);
        for (std::size_t i = 0; i < opaque.size(); ++i) {
            if (opaque[i] == 0) continue;
            const float share = depth[i] / deepest;
            add({backing_.means[0][i], backing_.means[1][i], backing_.means[2][i]},
                share * share * share * share);
        }
    }

    bool empty() const {
        return std::ranges::all_of(counts_, [](float v) { return v == 0.0f; });
    }

    std::vector<float> table(float rims, const ParallelLoop& loop) {
        Histogram narrow;
        Histogram broad;
        loop(0, 2, 1, [&](int begin, int end) {
            for (int n = begin; n < end; ++n) {
                (n == 0 ? narrow : broad) = n == 0 ? blurred(0.7f, 2.0f, 0.8f) : blurred(1.4f, 4.0f, 1.2f);
            }
        });
        for (std::size_t i = 0; i < counts_.size(); ++i) counts_[i] = 0.7f * narrow[i] + 0.3f * broad[i];
        normalise();
        return expected_spill(std::min(0.2f, 0.06f + 0.5f * rims), loop);
    }

  private:
    static std::vector<float> gaussian(float deviation) {
        const int reach = static_cast<int>(std::lround(4.0f * deviation));
        std::vector<float> taps;
        float sum = 0.0f;
        for (int d = -reach; d <= reach; ++d) {
            const auto t = static_cast<float>(d) / deviation;
            taps.push_back(std::exp(-0.5f * t * t));
            sum += taps.back();
        }
        for (float& tap : taps) tap /= sum;
        return taps;
    }

    // Along one axis, whose neighbours are `stride` apart; the ends repeat.
    static Histogram blurred_along(const Histogram& in, int count, std::size_t stride, float deviation) {
        const std::vector<float> taps = gaussian(deviation);
        const int reach = static_cast<int>(taps.size()) / 2;
        Histogram out(in.size(), 0.0f);
        const std::size_t block = stride * static_cast<std::size_t>(count);
        for (std::size_t start = 0; start < in.size(); start += block) {
            for (int n = 0; n < count; ++n) {
                float* const to = out.data() + start + stride * static_cast<std::size_t>(n);
                for (int d = -reach; d <= reach; ++d) {
                    const auto from = static_cast<std::size_t>(std::clamp(n + d, 0, count - 1));
                    const float* const source = in.data() + start + stride * from;
                    const int place = d + reach;
                    const float tap = taps[static_cast<std::size_t>(place)];
                    for (std::size_t i = 0; i < stride; ++i) to[i] += tap * source[i];
                }
            }
        }
        return out;
    }

    Histogram blurred(float hue, float level, float rel) const {
        Histogram pass = blurred_along(counts_, G::kHues, std::size_t{G::kLevels} * G::kRels, hue);
        pass = blurred_along(pass, G::kLevels, G::kRels, level);
        return blurred_along(pass, G::kRels, 1, rel);
    }

    // The most frequent hue counts 1 over all its colours.
    void normalise() {
        constexpr std::size_t kHue = std::size_t{G::kLevels} * G::kRels;
        float most = 1e-12f;
        for (std::size_t start = 0; start < counts_.size(); start += kHue) {
            float sum = 0.0f;
            for (std::size_t i = 0; i < kHue; ++i) sum += counts_[start + i];
            most = std::max(most, sum);
        }
        for (float& v : counts_) v /= most;
    }

    // For each rel that is seen the mean of what it may have beyond the subject's own, an own rel being the
    // likelier the more often it was learnt, and spill the rarer the more it is.
    std::vector<float> expected_spill(float usual, const ParallelLoop& loop) const {
        std::array<double, G::kRels> neutral{};
        double sum = 0.0;
        for (int n = 0; n < G::kRels; ++n) {
            const double t = static_cast<double>(rel_of(n)) / kNeutralDeviation;
            sum += neutral[static_cast<std::size_t>(n)] = std::exp(-0.5 * t * t);
        }
        for (double& v : neutral) v *= kNeutral / sum;
        std::vector<double> likely(std::size_t{G::kRels} * G::kRels);
        for (int seen = 0; seen < G::kRels; ++seen) {
            for (int own = 0; own < G::kRels; ++own) {
                const double gap = static_cast<double>(rel_of(seen) - rel_of(own));
                const double below = std::min(gap, 0.0) / kNoise;
                const int place = own * G::kRels + seen;
                likely[static_cast<std::size_t>(place)] =
                    std::exp(-std::max(gap, 0.0) / static_cast<double>(usual) - 0.5 * below * below);
            }
        }
        std::vector<float> table(G::kSize);
        loop(0, G::kHues * G::kLevels, 16, [&](int begin, int end) {
            for (int cell = begin; cell < end; ++cell) {
                const std::size_t start = static_cast<std::size_t>(cell) * G::kRels;
                std::array<double, G::kRels> weights{};
                std::array<double, G::kRels> owns{};
                for (std::size_t own = 0; own < G::kRels; ++own) {
                    const double count = static_cast<double>(counts_[start + own]) + neutral[own];
                    const auto rel = static_cast<double>(rel_of(static_cast<int>(own)));
                    const double* const likelihoods = likely.data() + own * G::kRels;
                    for (std::size_t seen = 0; seen < G::kRels; ++seen) {
                        const double w = count * likelihoods[seen];
                        weights[seen] += w;
                        owns[seen] += w * rel;
                    }
                }
                for (std::size_t seen = 0; seen < G::kRels; ++seen) {
                    const double own = owns[seen] / std::max(weights[seen], 1e-12);
                    const auto rel = static_cast<double>(rel_of(static_cast<int>(seen)));
                    table[start + seen] = static_cast<float>(std::max(rel - own, 0.0));
                }
            }
        });
        return table;
    }

    const BackingModel& backing_;
    Histogram counts_;
};

}  // namespace

std::map<std::size_t, double> count_own_colours(const BackingModel& backing, const Floats& alpha,
                                                const ParallelLoop& loop) {
    Learner learner(backing);
    learner.add_solids(alpha, loop);
    std::map<std::size_t, double> weights;
    for (std::size_t i = 0; i < G::kSize; ++i) {
        if (learner.counts()[i] > 0.0f) weights[i] = static_cast<double>(learner.counts()[i]);
    }
    return weights;
}

std::vector<float> learn_spill(const BackingModel& backing, const Floats& alpha,
                               const SpillSettings& settings, const ParallelLoop& loop) {
    Learner learner(backing, settings.counts);
    if (settings.counts.empty()) learner.add_solids(alpha, loop);
    if (learner.empty() && settings.own.empty()) return {};
    for (const auto& colour : settings.own) learner.add(colour, 100.0f);
    return learner.table(settings.rims, loop);
}

}  // namespace unmix
