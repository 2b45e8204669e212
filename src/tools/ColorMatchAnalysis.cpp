#include "tools/ColorMatchAnalysis.h"

#include <algorithm>
#include <cmath>

#include "stages/ColorConformKernel.h"

using K = KnobStorage;
using Sample = VeloxaSample::Sample;

namespace {

float brightness(const Sample& s) {
    return (0.3f * s[0] + 0.59f * s[1]) + 0.11f * s[2];
}

Sample mean(std::span<const Sample> samples) {
    Sample sum{};
    for (const Sample& sample : samples) {
        for (std::size_t i = 0; i < 4; ++i) sum[i] += sample[i] / static_cast<float>(samples.size());
    }
    return sum;
}

Planes bands_of(std::span<const Sample> samples, std::size_t bands, std::int32_t color_index) {
    std::vector<Sample> sorted(samples.begin(), samples.end());
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const Sample& a, const Sample& b) { return brightness(a) < brightness(b); });
    Planes planes(bands, color_index);
    for (std::size_t band = 0; band < bands; ++band) {
        const std::size_t begin = band * sorted.size() / bands;
        const std::size_t end = (band + 1) * sorted.size() / bands;
        planes.put(band, mean(std::span(sorted).subspan(begin, end - begin)));
    }
    return planes;
}

ControlTriple levels(const Sample& sample, std::int32_t color_index) {
    const auto level = [&](int role) {
        return Zo::Image::to_int(sample[static_cast<std::size_t>(ChannelForRole(color_index, role))]);
    };
    return {level(0), level(1), level(2)};
}

}  // namespace

std::vector<Dial> color_match_dials(int component) {
    return {{&K::color_darks, component}, {&K::color_midtones, component}, {&K::color_brights, component}};
}

ColorMatch match_colors(const Setting& setting, std::span<const Sample> keyed,
                        std::span<const Sample> background) {
    const std::size_t bands = std::min({keyed.size(), background.size(), std::size_t{3}});
    ColorMatch match{{setting.knobs, std::vector<double>(bands)}};
    if (bands == 0) return match;
    const std::int32_t color_index = setting.color_index();
    match.fg = levels(mean(keyed), color_index);
    match.bg = levels(mean(background), color_index);
    match.tuning.knobs.color_conformance = true;

    const Planes fg = bands_of(keyed, bands, color_index);
    const Planes bg = bands_of(background, bands, color_index);
    const std::vector<float> opaque(bands, 255.0f);
    TrialControls trial(setting);
    Planes out(bands, color_index);
    const auto judge = [&](const KnobStorage& knobs, std::size_t role, std::size_t first,
                           std::span<double> misses) {
        conform_colour(conform_params(trial.with(knobs)), fg.pixels(first), opaque.data(), out.output(first),
                       misses.size());
        for (std::size_t i = first; i < first + misses.size(); ++i) {
            const double off = static_cast<double>(out.role(role)[i]) - static_cast<double>(bg.role(role)[i]);
            misses[i - first] = miss_of(std::abs(off) - kMatchBound);
        }
    };
    const std::vector<Ray> rays{{1, 1, 1},  {1, 1, 0},  {1, 0, 1}, {0, 1, 1},
                                {1, 0, -1}, {1, -1, 0}, {0, 1, -1}};
    for (std::size_t role = 0; role < 3; ++role) {
        const auto dials = color_match_dials(ChannelForRole(color_index, static_cast<int>(role)));
        const auto misses = [&](const KnobStorage& knobs, std::size_t first, std::span<double> list) {
            judge(knobs, role, first, list);
        };
        match.tuning.knobs = tune(match.tuning.knobs, dials, setting.held, rays, bands, misses).knobs;
    }
    std::vector<double> misses(bands);
    for (std::size_t role = 0; role < 3; ++role) {
        judge(match.tuning.knobs, role, 0, misses);
        for (std::size_t i = 0; i < bands; ++i) {
            match.tuning.misses[i] = std::max(match.tuning.misses[i], misses[i]);
        }
    }
    return match;
}
