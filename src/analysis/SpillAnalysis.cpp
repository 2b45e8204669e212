#include "analysis/SpillAnalysis.h"

#include <algorithm>
#include <cmath>

#include "controls/Controls.h"
#include "stages/KernelMath.h"
#include "stages/ProcessedForegroundKernel.h"
#include "stages/SpillKernel.h"

using K = KnobStorage;

namespace {

// The foreground that was keyed into the samples.
Planes with_backing(const Planes& keyed, const ControlTriple& backing, std::int32_t color_index) {
    Planes fg(keyed.size(), color_index);
    for (std::size_t role = 0; role < 3; ++role) {
        for (std::size_t i = 0; i < keyed.size(); ++i) {
            const double share = std::max(0.0, static_cast<double>(keyed.alpha()[i])) * kernel::kByte;
            fg.role(role)[i] =
                static_cast<float>(static_cast<double>(keyed.role(role)[i]) + share * backing[role]);
        }
    }
    return fg;
}

}  // namespace

Tuning analyse_spill(const Setting& setting, std::span<const SpillSample> samples) {
    const std::size_t n = samples.size();
    const std::int32_t color_index = setting.color_index();
    Planes keyed(n, color_index);
    bool transparent = false;
    for (std::size_t i = 0; i < n; ++i) {
        keyed.put(i, samples[i].keyed);
        transparent |= samples[i].keyed[3] > 0.0f && samples[i].keyed[3] < 255.0f;
    }
    const Planes fg = with_backing(keyed, setting.controls.get(controls::kBackingColor), color_index);

    std::vector<Dial> dials{
        Dial::number(&K::spill_cool, -300.0, 300.0),   Dial::number(&K::spill_warm, -300.0, 300.0),
        Dial::number(&K::spill_brights, 50.0, 200.0),  Dial::number(&K::spill_strength, 0.0, 100.0),
        Dial::number(&K::spill_midtones, -50.0, 50.0), Dial::number(&K::spill_darks, -50.0, 50.0)};
    for (int role = 0; role < 3; ++role) {
        dials.push_back(
            Dial::level_component(&K::spill_ambience, ChannelForRole(color_index, role), 0.0, 1.0));
    }
    std::vector<Ray> rays{{1, 1, 0, 0, 0, 0, 0, 0, 0},   {1, 1, 0, -1, 0, 0, 0, 0, 0},
                          {1, 1, 1, 0, 0, 0, 0, 0, 0},   {1, 0, 0, -1, 0, 0, 0, 0, 0},
                          {0, 1, 0, -1, 0, 0, 0, 0, 0},  {0, 0, 0, 0, 0, 0, 1, 1, 1},
                          {0, 0, 0, 0, 0, 0, -1, -1, 1}, {1, 1, 0, 0, 0, 0, 1, 1, -1}};
    if (transparent && !setting.clean_plate()) {
        dials.push_back(Dial::component(&K::spill_backgroundveiling, ChannelForRole(color_index, 2), 0.0, 1.0,
                                        0.0, 1.0 / 250.0));
        for (Ray& ray : rays) ray.push_back(0.0);
    }

    KnobStorage base = setting.knobs;
    base.spill_suppression = true;
    TrialControls trial(setting);
    // An ambience that merely allows more would take nothing out.
    const double allowance = spill_params(trial.with(base)).allowance;
    Planes unveiled(n, color_index);
    Planes out(n, color_index);
    std::vector<float> opacity(n);
    const std::vector<float> no_backing(n);
    const auto misses = [&](const KnobStorage& knobs, std::span<double> miss) {
        const ControlBlock& controls = trial.with(knobs);
        const SpillParams spill = spill_params(controls);
        unveil_constant(veil_params(controls), fg.pixels(), {keyed.alpha().data(), no_backing.data()},
                        unveiled.output(), opacity.data(), n);
        suppress_spill(spill, unveiled.pixels(), opacity.data(), no_backing.data(), out.output(), n);
        for (std::size_t i = 0; i < n; ++i) {
            const auto level = [i](const Planes& planes, std::size_t role) {
                return static_cast<double>(planes.role(role)[i]);
            };
            const double allowed =
                std::max(level(out, 0), level(out, 1)) + std::min(spill.allowance, allowance);
            const double over = samples[i].restore ? std::abs(level(out, 2) - level(keyed, 2)) - kRestoreBound
                                                   : level(out, 2) - allowed - kRemoveBound;
            miss[i] = over <= 0.0 ? 0.0 : std::isfinite(over) ? over / 255.0 : 2.0;
        }
    };
    return tune(base, dials, rays, n, misses);
}
