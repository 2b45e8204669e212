#include "tools/AddMatteAnalysis.h"

#include <cmath>

#include "screen/ClearRegionKernel.h"
#include "screen/CrudeMatteKernel.h"
#include "stages/MatteKernel.h"
#include "stages/OutputMatteKernel.h"
#include "stages/ProcessedForegroundKernel.h"

using K = KnobStorage;

namespace {

constexpr float kBackingBound = 1.0f;

// The matte stages for a list of samples, and the clear region that goes before them.
class Mattes {
  public:
    Mattes(const Setting& setting, std::size_t n)
        : fg_(n, setting.color_index()),
          plate_(n, setting.color_index()),
          colour_(n, setting.color_index()),
          raw_(n),
          region_(n),
          opacity_(n),
          matte_(n),
          trial_(setting),
          clean_plate_(setting.clean_plate()) {}

    void put(std::size_t i, const PlatedSample& sample) {
        fg_.put(i, sample.fg);
        plate_.put(i, sample.plate);
    }
    void normalise() {
        fg_.normalise();
        plate_.normalise();
    }

    // Of n samples from `first` on.
    const float* matte(const KnobStorage& knobs, std::size_t first, std::size_t n) {
        const ControlBlock& controls = trial_.with(knobs);
        const RolePixels fg = fg_.pixels(first);
        const RolePixels plate = plate_.pixels(first);
        float* const raw = raw_.data() + first;
        float* const region = region_.data() + first;
        float* const opacity = opacity_.data() + first;
        if (clean_plate_) {
            crude_matte(crude_matte_params(controls), fg, plate, raw, n);
            clear_region(clear_region_params(controls), fg, &plate, {nullptr, raw, nullptr}, region, n);
        } else {
            clear_region(clear_region_params(controls), fg, nullptr, {}, region, n);
        }
        const MatteParams density = matte_params(controls);
        const VeilParams veil = veil_params(controls);
        if (clean_plate_) {
            matte_clean_plate(density, fg, plate, raw, n);
            unveil_clean_plate(veil, fg, plate, {raw, region}, colour_.output(first), opacity, n);
        } else {
            matte_constant(density, fg, raw, n);
            unveil_constant(veil, fg, {raw, region}, colour_.output(first), opacity, n);
        }
        output_matte(opacity, matte_.data() + first, n);
        return matte_.data() + first;
    }

  private:
    Planes fg_, plate_, colour_;
    std::vector<float> raw_, region_, opacity_, matte_;
    TrialControls trial_;
    bool clean_plate_;
};

}  // namespace

std::vector<float> sample_mattes(const Setting& setting, std::span<const PlatedSample> samples) {
    Mattes stages(setting, samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) stages.put(i, samples[i]);
    stages.normalise();
    const float* const matte = stages.matte(setting.knobs, 0, samples.size());
    return {matte, matte + samples.size()};
}

std::vector<Dial> add_matte_dials(const Setting& setting) {
    std::vector<Dial> dials{&K::brights, &K::darks, &K::warm, &K::cool};
    hold(dials, setting.held);
    return dials;
}

Tuning analyse_add_matte(const Setting& setting, std::span<const PlatedSample> samples,
                         std::span<const PlatedSample> backing, std::span<const float> mattes) {
    const std::size_t asked = samples.size();
    const std::size_t n = asked + backing.size();
    Mattes stages(setting, n);
    for (std::size_t i = 0; i < n; ++i) stages.put(i, i < asked ? samples[i] : backing[i - asked]);
    stages.normalise();

    const std::vector<Dial> dials = add_matte_dials(setting);
    const std::vector<Ray> rays{{0, 0, 1, 1}, {1, 1, 0, 0}, {1, 0, 1, 0}, {1, 0, 0, 1}, {1, 1, 1, 1}};
    const auto misses = [&](const KnobStorage& knobs, std::size_t first, std::span<double> out) {
        const float* const matte = stages.matte(knobs, first, out.size());
        for (std::size_t i = first; i < first + out.size(); ++i) {
            const float m = matte[i - first];
            const float off = i < asked ? m : std::abs(m - mattes[i - asked]);
            const bool right = i < asked ? off <= 0.0f : off <= kBackingBound;
            out[i - first] = right ? 0.0 : std::isfinite(off) ? static_cast<double>(off) / 255.0 + 1e-9 : 2.0;
        }
    };
    return tune(setting.knobs, dials, rays, n, misses);
}
