#include "tools/MatteSampleAnalysis.h"

#include <algorithm>
#include <cmath>

#include "screen/CleanupKernel.h"

using K = KnobStorage;

std::vector<Dial> matte_sample_dials(const Setting& setting, bool remove_noise) {
    std::vector<Dial> dials{&K::cleanup_recover};
    if (remove_noise) {
        dials.push_back(&K::cleanup_cleanup);
    } else {
        dials[0].low = static_cast<double>(setting.knobs.cleanup_recover);
    }
    return dials;
}

Tuning analyse_matte_samples(const Setting& setting, bool remove_noise,
                             std::span<const MatteSample> samples) {
    const std::size_t n = samples.size();
    std::vector<float> matte(n);
    for (std::size_t i = 0; i < n; ++i) matte[i] = samples[i].matte;

    KnobStorage base = setting.knobs;
    base.cleanup = base.cleanup || remove_noise;
    std::vector<Ray> rays;
    // Strength to its end for clear-cut thresholds: what keeps detail needs recover close below noise.
    if (remove_noise) rays = {{1, 1}, {0.5, 1}, {0.25, 1}, {-1, 1}};

    TrialControls trial(setting);
    std::vector<float> cleaned(n);
    const auto misses = [&](const KnobStorage& knobs, std::size_t first, std::span<double> out) {
        const float* result = matte.data();
        if (knobs.cleanup) {
            cleanup_matte(cleanup_params(trial.with(knobs)), matte.data() + first, cleaned.data() + first,
                          out.size());
            result = cleaned.data();
        }
        for (std::size_t i = first; i < first + out.size(); ++i) {
            const float wanted = samples[i].noise ? 255.0f : samples[i].matte;
            const double off = static_cast<double>(std::abs(result[i] - wanted));
            out[i - first] = result[i] == wanted ? 0.0 : off / 255.0;
        }
    };
    return tune(base, matte_sample_dials(setting, remove_noise), setting.held, rays, n, misses);
}
