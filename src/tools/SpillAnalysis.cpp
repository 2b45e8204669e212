#include "tools/SpillAnalysis.h"

#include <algorithm>
#include <cmath>

#include "controls/Controls.h"
#include "lanes/KernelMath.h"
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

// The stages from the unveiled colour to the suppressed one for a list of samples.
class Spills {
  public:
    Spills(const Setting& setting, std::span<const SpillSample> samples)
        : samples_(samples),
          keyed_(planes_of(samples, setting.color_index())),
          fg_(with_backing(keyed_, setting.controls.get(controls::kBackingColor), setting.color_index())),
          unveiled_(samples.size(), setting.color_index()),
          out_(samples.size(), setting.color_index()),
          opacity_(samples.size()),
          no_backing_(samples.size()),
          trial_(setting),
          // An ambience that merely allows more would take nothing out.
          allowance_(spill_params(trial_.with(suppressed(setting.knobs))).allowance) {}

    static KnobStorage suppressed(KnobStorage knobs) {
        knobs.spill_suppression = true;
        return knobs;
    }

    // Of samples from `first` on.
    void miss(const KnobStorage& knobs, std::size_t first, std::span<double> misses) {
        const ControlBlock& controls = trial_.with(knobs);
        const SpillParams spill = spill_params(controls);
        const std::size_t n = misses.size();
        float* const opacity = opacity_.data() + first;
        unveil_constant(veil_params(controls), fg_.pixels(first),
                        {keyed_.alpha().data() + first, no_backing_.data()}, unveiled_.output(first), opacity,
                        n);
        suppress_spill(spill, unveiled_.pixels(first), opacity, no_backing_.data(), out_.output(first), n);
        for (std::size_t i = first; i < first + n; ++i) {
            const auto level = [i](const Planes& planes, std::size_t role) {
                return static_cast<double>(planes.role(role)[i]);
            };
            const double allowed =
                std::max(level(out_, 0), level(out_, 1)) + std::min(spill.allowance, allowance_);
            const double over = samples_[i].restore
                                    ? std::abs(level(out_, 2) - level(keyed_, 2)) - kRestoreBound
                                    : level(out_, 2) - allowed - kRemoveBound;
            misses[i - first] = miss_of(over);
        }
    }

  private:
    static Planes planes_of(std::span<const SpillSample> samples, std::int32_t color_index) {
        Planes planes(samples.size(), color_index);
        for (std::size_t i = 0; i < samples.size(); ++i) planes.put(i, samples[i].keyed);
        return planes;
    }

    std::span<const SpillSample> samples_;
    Planes keyed_, fg_, unveiled_, out_;
    std::vector<float> opacity_, no_backing_;
    TrialControls trial_;
    double allowance_;
};

}  // namespace

std::vector<bool> spill_agrees(const Setting& setting, const KnobStorage& knobs,
                               std::span<const SpillSample> samples) {
    std::vector<double> misses(samples.size());
    Spills(setting, samples).miss(knobs, 0, misses);
    std::vector<bool> agrees(samples.size());
    std::transform(misses.begin(), misses.end(), agrees.begin(), [](double miss) { return miss == 0.0; });
    return agrees;
}

std::vector<Dial> spill_dials(const Setting& setting, bool transparent) {
    const std::int32_t color_index = setting.color_index();
    std::vector<Dial> dials{&K::spill_cool,     &K::spill_warm,     &K::spill_brights,
                            &K::spill_strength, &K::spill_midtones, &K::spill_darks};
    for (int role = 0; role < 3; ++role) {
        dials.emplace_back(&K::spill_ambience, ChannelForRole(color_index, role));
    }
    if (transparent && !setting.clean_plate()) {
        dials.emplace_back(&K::spill_backgroundveiling, ChannelForRole(color_index, 2));
    }
    return dials;
}

Tuning analyse_spill(const Setting& setting, std::span<const SpillSample> samples) {
    const bool transparent = std::ranges::any_of(
        samples, [](const SpillSample& s) { return s.keyed[3] > 0.0f && s.keyed[3] < 255.0f; });
    const std::vector<Ray> rays{{1, 1, 0, 0, 0, 0, 0, 0, 0},   {1, 1, 0, -1, 0, 0, 0, 0, 0},
                                {1, 1, 1, 0, 0, 0, 0, 0, 0},   {1, 0, 0, -1, 0, 0, 0, 0, 0},
                                {0, 1, 0, -1, 0, 0, 0, 0, 0},  {0, 0, 0, 0, 0, 0, 1, 1, 1},
                                {0, 0, 0, 0, 0, 0, -1, -1, 1}, {1, 1, 0, 0, 0, 0, 1, 1, -1}};

    Spills spills(setting, samples);
    const auto misses = [&](const KnobStorage& knobs, std::size_t first, std::span<double> out) {
        spills.miss(knobs, first, out);
    };
    return tune(Spills::suppressed(setting.knobs), spill_dials(setting, transparent), setting.held, rays,
                samples.size(), misses);
}
