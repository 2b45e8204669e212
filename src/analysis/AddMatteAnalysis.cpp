#include "analysis/AddMatteAnalysis.h"

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

    const std::vector<float>& matte(const KnobStorage& knobs) {
        const ControlBlock& controls = trial_.with(knobs);
        const std::size_t n = raw_.size();
        const RolePixels fg = fg_.pixels();
        const RolePixels plate = plate_.pixels();
        const VeilMattes mattes{raw_.data(), region_.data()};
        if (clean_plate_) {
            crude_matte(crude_matte_params(controls), fg, plate, raw_.data(), n);
            clear_region(clear_region_params(controls), fg, &plate, {nullptr, raw_.data(), nullptr},
                         region_.data(), n);
        } else {
            clear_region(clear_region_params(controls), fg, nullptr, {}, region_.data(), n);
        }
        const MatteParams density = matte_params(controls);
        const VeilParams veil = veil_params(controls);
        if (clean_plate_) {
            matte_clean_plate(density, fg, plate, raw_.data(), n);
            unveil_clean_plate(veil, fg, plate, mattes, colour_.output(), opacity_.data(), n);
        } else {
            matte_constant(density, fg, raw_.data(), n);
            unveil_constant(veil, fg, mattes, colour_.output(), opacity_.data(), n);
        }
        output_matte(opacity_.data(), matte_.data(), n);
        return matte_;
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
    return stages.matte(setting.knobs);
}

Tuning analyse_add_matte(const Setting& setting, std::span<const PlatedSample> samples,
                         std::span<const PlatedSample> backing, std::span<const float> mattes) {
    const std::size_t asked = samples.size();
    const std::size_t n = asked + backing.size();
    Mattes stages(setting, n);
    for (std::size_t i = 0; i < n; ++i) stages.put(i, i < asked ? samples[i] : backing[i - asked]);
    stages.normalise();

    const std::vector<Dial> dials{
        Dial::number(&K::brights, 0.0, 1000.0), Dial::number(&K::darks, -500.0, 500.0),
        Dial::number(&K::warm, -1000.0, 1000.0), Dial::number(&K::cool, -1000.0, 1000.0)};
    const std::vector<Ray> rays{{0, 0, 1, 1}, {1, 1, 0, 0}, {1, 0, 1, 0}, {1, 0, 0, 1}, {1, 1, 1, 1}};
    const auto misses = [&](const KnobStorage& knobs, std::span<double> out) {
        const std::vector<float>& matte = stages.matte(knobs);
        for (std::size_t i = 0; i < n; ++i) {
            const float off = i < asked ? matte[i] : std::abs(matte[i] - mattes[i - asked]);
            const bool right = i < asked ? off <= 0.0f : off <= kBackingBound;
            out[i] = right ? 0.0 : std::isfinite(off) ? static_cast<double>(off) / 255.0 + 1e-9 : 2.0;
        }
    };
    return tune(setting.knobs, dials, rays, n, misses);
}
