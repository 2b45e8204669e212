#include "unmix/Clusters.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace unmix {

namespace {

constexpr int kRounds = 8;
constexpr double kFarthest = 0.98;

using Colour = std::array<double, 3>;

double apart(const Colour& a, const std::array<float, 3>& b) {
    double sum = 0.0;
    for (std::size_t c = 0; c < 3; ++c) {
        const double d = a[c] - static_cast<double>(b[c]);
        sum += d * d;
    }
    return sum;
}

std::size_t nearest(const std::vector<Colour>& means, const std::array<float, 3>& sample) {
    std::size_t best = 0;
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t k = 0; k < means.size(); ++k) {
        const double d = apart(means[k], sample);
        if (d < least) {
            least = d;
            best = k;
        }
    }
    return best;
}

// What joining them adds to the sum of squares (Ward 1963).
double joining_cost(const ColourGroup& a, const ColourGroup& b) {
    double sum = 0.0;
    for (std::size_t c = 0; c < 3; ++c) sum += (a.mean[c] - b.mean[c]) * (a.mean[c] - b.mean[c]);
    return sum * a.count * b.count / (a.count + b.count);
}

ColourGroup joined(const ColourGroup& a, const ColourGroup& b) {
    ColourGroup both{a.count + b.count, {}, {}};
    for (std::size_t c = 0; c < 3; ++c) {
        both.mean[c] = (a.count * a.mean[c] + b.count * b.mean[c]) / both.count;
    }
    std::size_t n = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = i; j < 3; ++j, ++n) {
            const double between = (a.mean[i] - b.mean[i]) * (a.mean[j] - b.mean[j]) * a.count * b.count;
            both.covariance[n] = ((a.count - 1.0) * a.covariance[n] + (b.count - 1.0) * b.covariance[n] +
                                  between / both.count) /
                                 (both.count - 1.0);
        }
    }
    return both;
}

Colour as_double(const std::array<float, 3>& v) {
    return {static_cast<double>(v[0]), static_cast<double>(v[1]), static_cast<double>(v[2])};
}

std::vector<Colour> starts(const std::vector<std::array<float, 3>>& samples, std::size_t count) {
    Colour mean{};
    for (const auto& sample : samples) {
        for (std::size_t c = 0; c < 3; ++c) mean[c] += static_cast<double>(sample[c]);
    }
    for (double& v : mean) v /= static_cast<double>(samples.size());
    std::vector<Colour> found{mean};
    std::vector<double> away(samples.size(), std::numeric_limits<double>::infinity());
    std::vector<std::size_t> order(samples.size());
    while (found.size() < count) {
        for (std::size_t i = 0; i < samples.size(); ++i) {
            away[i] = std::min(away[i], apart(found.back(), samples[i]));
        }
        std::iota(order.begin(), order.end(), std::size_t{0});
        const auto at =
            order.begin() + static_cast<std::ptrdiff_t>(kFarthest * static_cast<double>(samples.size() - 1));
        std::nth_element(order.begin(), at, order.end(), [&](std::size_t a, std::size_t b) {
            return away[a] != away[b] ? away[a] < away[b] : a < b;
        });
        found.push_back(as_double(samples[*at]));
    }
    return found;
}

}  // namespace

Clusters find_clusters(const std::vector<std::array<float, 3>>& samples, int count) {
    Clusters found;
    if (samples.empty()) return found;
    const std::size_t most = std::min(static_cast<std::size_t>(std::max(count, 0)), samples.size());
    if (most == 0) return found;
    found.means = starts(samples, most);
    found.of.resize(samples.size());
    for (int round = 0; round < kRounds; ++round) {
        std::vector<Colour> sums(most, Colour{});
        std::vector<double> counts(most, 0.0);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const std::size_t best = nearest(found.means, samples[i]);
            found.of[i] = static_cast<int>(best);
            counts[best] += 1.0;
            for (std::size_t c = 0; c < 3; ++c) sums[best][c] += static_cast<double>(samples[i][c]);
        }
        for (std::size_t k = 0; k < most; ++k) {
            if (counts[k] == 0.0) continue;
            for (std::size_t c = 0; c < 3; ++c) found.means[k][c] = sums[k][c] / counts[k];
        }
    }
    return found;
}

Clusters nearest_clusters(const std::vector<std::array<float, 3>>& samples, std::vector<Colour> means) {
    Clusters found{std::move(means), {}};
    for (const auto& sample : samples) found.of.push_back(static_cast<int>(nearest(found.means, sample)));
    return found;
}

void join_groups(std::vector<ColourGroup>& groups, std::size_t most) {
    while (groups.size() > most) {
        std::array<std::size_t, 2> best{0, 1};
        double least = std::numeric_limits<double>::infinity();
        for (std::size_t a = 0; a < groups.size(); ++a) {
            for (std::size_t b = a + 1; b < groups.size(); ++b) {
                const double cost = joining_cost(groups[a], groups[b]);
                if (!(cost < least)) continue;
                least = cost;
                best = {a, b};
            }
        }
        groups[best[0]] = joined(groups[best[0]], groups[best[1]]);
        groups.erase(groups.begin() + static_cast<std::ptrdiff_t>(best[1]));
    }
}

}  // namespace unmix
