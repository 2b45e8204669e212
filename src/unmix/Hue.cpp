#include "unmix/Hue.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "unmix/Quantile.h"

namespace unmix {

namespace {

constexpr int kBins = kHueBins;
constexpr float kSure = 0.10f;
constexpr float kMay = 0.20f;
constexpr float kLeads = 0.08f;       // the least lead that counts,
constexpr float kLeadsOfBest = 0.3f;  // or this share of the strongest, where all are weak
constexpr float kDark = 0.02f;

using Ratio = std::array<float, 2>;

// Neighbours count by a Gaussian of one bin.
std::vector<double> smoothed(const std::vector<double>& counts) {
    constexpr std::array kTaps{0.399050, 0.242036, 0.054006, 0.004433};
    std::vector<double> pass = counts;
    for (const int stride : {1, kBins}) {
        std::vector<double> next(pass.size(), 0.0);
        for (int i = 0; i < kBins * kBins; ++i) {
            const int at = stride == 1 ? i % kBins : i / kBins;
            for (int d = -3; d <= 3; ++d) {
                if (at + d < 0 || at + d >= kBins) continue;
                const int place_of = i + d * stride;
                const auto place = static_cast<std::size_t>(place_of);
                next[static_cast<std::size_t>(i)] +=
                    kTaps[static_cast<std::size_t>(std::abs(d))] * pass[place];
            }
        }
        pass = std::move(next);
    }
    return pass;
}

}  // namespace

HueMasks find_hue(const BackingModel& model, const Floats& garbage, std::vector<double> counts) {
    const Colours& means = model.means;
    const std::size_t cells = means[0].size();
    const auto colour = [&](std::size_t i) { return std::array{means[0][i], means[1][i], means[2][i]}; };
    const auto ratio = [&](std::size_t i) {
        const float k = std::max(means[static_cast<std::size_t>(model.screen)][i], kDark);
        // What a narrow gamut cannot hold of a screen is below 0.
        return Ratio{std::max(means[static_cast<std::size_t>(model.others[0])][i], 0.0f) / k,
                     std::max(means[static_cast<std::size_t>(model.others[1])][i], 0.0f) / k};
    };
    std::vector<float> leads(cells);
    std::vector<float> leading;
    for (std::size_t i = 0; i < cells; ++i) {
        leads[i] = !garbage.empty() && garbage[i] > 0.5f ? 0.0f : lead_of(colour(i), model);
        if (leads[i] > 0.0f) leading.push_back(leads[i]);
    }
    const float least = std::min(kLeads, kLeadsOfBest * (leading.empty() ? 0.0f : quantile(leading, 0.95)));

    const bool counted = !counts.empty();
    counts.resize(static_cast<std::size_t>(kBins) * kBins, 0.0);
    for (std::size_t i = 0; i < cells; ++i) {
        if (counted || leads[i] <= least) continue;
        const Ratio r = ratio(i);
        const auto bin = [](float v) { return std::clamp(static_cast<int>(v * kBins), 0, kBins - 1); };
        const int place = bin(r[0]) * kBins + bin(r[1]);
        counts[static_cast<std::size_t>(place)] += 1.0;
    }
    const std::vector<double> smooth = smoothed(counts);
    const auto mode = static_cast<int>(std::ranges::max_element(smooth) - smooth.begin());
    const int first = mode / kBins;
    const int second = mode % kBins;
    const Ratio middle{(static_cast<float>(first) + 0.5f) / kBins,
                       (static_cast<float>(second) + 0.5f) / kBins};

    HueMasks masks{Bytes(means[0].width(), means[0].height()), Bytes(means[0].width(), means[0].height()),
                   std::move(counts)};
    std::vector<float> near;
    for (std::size_t i = 0; i < cells; ++i) {
        const Ratio r = ratio(i);
        const float x = r[0] - middle[0];
        const float y = r[1] - middle[1];
        const float off = leads[i] > least ? x * x + y * y : 1.0f;
        masks.sure[i] = off < kSure * kSure ? 1 : 0;
        masks.may[i] = off < kMay * kMay ? 1 : 0;
        if (masks.sure[i] != 0) near.push_back(leads[i]);
    }
    const float floor = kLeadsOfBest * (near.empty() ? 0.0f : quantile(near, 0.5));
    for (std::size_t i = 0; i < cells; ++i) {
        if (leads[i] > floor) continue;
        masks.sure[i] = 0;
        masks.may[i] = 0;
    }
    return masks;
}

}  // namespace unmix
