#include "tools/OverlayAnalysis.h"

#include <algorithm>

using K = KnobStorage;

namespace {

bool agree(const OverlaySample& sample, float region) {
    return (region != 0.0f) == sample.screen;
}

}  // namespace

std::vector<bool> overlay_agrees(const Setting& setting, std::span<const OverlaySample> samples) {
    Regions regions(setting, samples);
    regions.decide(setting.knobs, 0, samples.size());
    std::vector<bool> agrees(samples.size());
    std::transform(samples.begin(), samples.end(), regions.decision.begin(), agrees.begin(), agree);
    return agrees;
}

std::vector<Dial> overlay_dials(const Setting& setting) {
    const std::int32_t color_index = setting.color_index();
    std::vector<Dial> dials;
    const auto tolerance = [&](int role) {
        dials.emplace_back(&K::screen_tolerance, ChannelForRole(color_index, role));
    };
    tolerance(0);
    tolerance(1);
    dials.insert(dials.end(), {&K::screen_darks_red_larger, &K::screen_darks_red_smaller,
                               &K::screen_brights_red_larger, &K::screen_brights_red_smaller});
    if (setting.clean_plate()) tolerance(2);
    return dials;
}

Tuning analyse_overlay(const Setting& setting, std::span<const OverlaySample> samples) {
    const std::vector<Dial> dials = overlay_dials(setting);
    const std::vector<Ray> rays{{1, 1, 0, 0, 0, 0},   {0, 0, 1, 1, 0, 0},   {0, 0, 0, 0, 1, 1},
                                {1, 0, 0, 1, 0, 0},   {0, 1, 1, 0, 0, 0},   {1, 1, 1, 1, 0, 0},
                                {1, 1, 0, 0, -1, -1}, {1, 0, 0, 0, 0, -1},  {0, 1, 0, 0, -1, 0},
                                {1, 1, 1, 1, -1, -1}, {1, 1, -1, -1, 0, 0}, {1, 0, -1, 0, 0, 0},
                                {1, 0, 0, -1, 0, 0},  {0, 1, -1, 0, 0, 0},  {0, 1, 0, -1, 0, 0}};

    Regions regions(setting, samples);
    const auto misses = [&](const KnobStorage& knobs, std::size_t first, std::span<double> out) {
        regions.decide(knobs, first, out.size());
        for (std::size_t i = 0; i < out.size(); ++i) {
            out[i] = agree(samples[first + i], regions.decision[first + i]) ? 0.0 : 1.0;
        }
    };
    return tune(setting.knobs, dials, setting.held, rays, samples.size(), misses);
}
