#include "KeepChoice.h"

namespace Zo::Image {

namespace {

constexpr double kChanged = 0.25;
constexpr double kReadByChanged = 4.0;
constexpr double kReady = 2.0;

// Time to make one operator's rows from those that are there: kept ones, or made on the way.
double cost_of(std::size_t option, const std::vector<KeepOption>& options, std::vector<bool>& there) {
    there[option] = true;
    double cost = options[option].cost;
    for (const std::size_t source : *options[option].reads) {
        if (!there[source]) cost += cost_of(source, options, there);
    }
    return cost;
}

std::vector<double> weights(const std::vector<KeepOption>& options) {
    std::vector<double> result(options.size());
    for (std::size_t i = 0; i < options.size(); ++i) result[i] = options[i].changed ? kChanged : 1.0;
    for (std::size_t i = 0; i < options.size(); ++i) {
        if (i != 0 && !options[i].changed) continue;
        for (const std::size_t source : *options[i].reads) {
            if (!options[source].changed) result[source] = kReadByChanged;
        }
    }
    for (std::size_t i = 0; i < options.size(); ++i) {
        if (options[i].ready) result[i] *= kReady;
    }
    return result;
}

}  // namespace

std::vector<bool> choose_kept(const std::vector<KeepOption>& options, std::size_t budget) {
    std::vector<bool> kept(options.size());
    const std::vector<double> weight = weights(options);
    for (;;) {
        std::size_t best = 0;
        double best_gain = 0.0;
        for (std::size_t i = 1; i < options.size(); ++i) {
            if (kept[i] || options[i].bytes == 0 || options[i].bytes > budget) continue;
            std::vector<bool> there = kept;
            const double gain =
                cost_of(i, options, there) * weight[i] / static_cast<double>(options[i].bytes);
            if (gain > best_gain) {
                best = i;
                best_gain = gain;
            }
        }
        if (best == 0) return kept;
        kept[best] = true;
        budget -= options[best].bytes;
    }
}

}  // namespace Zo::Image
