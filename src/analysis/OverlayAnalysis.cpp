#include "analysis/OverlayAnalysis.h"

#include "screen/ClearRegionKernel.h"
#include "screen/CrudeMatteKernel.h"

using K = KnobStorage;

Tuning analyse_overlay(const Setting& setting, std::span<const OverlaySample> samples) {
    const std::size_t n = samples.size();
    const std::int32_t color_index = setting.color_index();
    Planes fg(n, color_index);
    Planes plate(n, color_index);
    for (std::size_t i = 0; i < n; ++i) {
        fg.put(i, samples[i].fg);
        plate.put(i, samples[i].plate);
    }
    fg.normalise();
    plate.normalise();

    const bool clean_plate = setting.clean_plate();
    std::vector<Dial> dials;
    const auto tolerance = [&](int role) {
        dials.push_back(Dial::component(&K::screen_tolerance, ChannelForRole(color_index, role), 0.0, 1.0,
                                        0.5, 1.0 / 510.0));
    };
    tolerance(0);
    tolerance(1);
    dials.push_back(Dial::number(&K::screen_darks_red_larger, -50.0, 50.0));
    dials.push_back(Dial::number(&K::screen_darks_red_smaller, -50.0, 50.0));
    dials.push_back(Dial::number(&K::screen_brights_red_larger, 0.0, 1000.0));
    dials.push_back(Dial::number(&K::screen_brights_red_smaller, 0.0, 1000.0));
    std::vector<Ray> rays{{1, 1, 0, 0, 0, 0},  {0, 0, 1, 1, 0, 0},  {0, 0, 0, 0, 1, 1},   {1, 0, 0, 1, 0, 0},
                          {0, 1, 1, 0, 0, 0},  {1, 1, 1, 1, 0, 0},  {1, 1, 0, 0, -1, -1}, {1, 0, 0, 0, 0, -1},
                          {0, 1, 0, 0, -1, 0}, {1, 1, 1, 1, -1, -1}};
    if (clean_plate) {
        tolerance(2);
        for (Ray& ray : rays) ray.push_back(0.0);
    }

    TrialControls trial(setting);
    std::vector<float> crude(n);
    std::vector<float> region(n);
    const auto misses = [&](const KnobStorage& knobs, std::span<double> out) {
        const ControlBlock& controls = trial.with(knobs);
        const RolePixels backing = plate.pixels();
        if (clean_plate) crude_matte(crude_matte_params(controls), fg.pixels(), backing, crude.data(), n);
        clear_region(clear_region_params(controls), fg.pixels(), clean_plate ? &backing : nullptr,
                     {nullptr, clean_plate ? crude.data() : nullptr, nullptr}, region.data(), n);
        for (std::size_t i = 0; i < n; ++i) out[i] = (region[i] != 0.0f) == samples[i].screen ? 0.0 : 1.0;
    };
    return tune(setting.knobs, dials, rays, n, misses);
}
