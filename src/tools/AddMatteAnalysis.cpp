#include "tools/AddMatteAnalysis.h"

#include <cmath>

#include "stages/MatteKernel.h"
#include "stages/OutputMatteKernel.h"
#include "stages/ProcessedForegroundKernel.h"

using K = KnobStorage;

namespace {

constexpr float kBackingBound = 1.0f;

// The matte stages for a list of samples, and the clear region that goes before them.
class Mattes {
  public:
    Mattes(const Setting& setting, std::span<const PlatedSample> samples)
        : regions_(setting, samples),
          colour_(samples.size(), setting.color_index()),
          raw_(samples.size()),
          opacity_(samples.size()),
          matte_(samples.size()) {}

    // Of n samples from `first` on.
    const float* matte(const KnobStorage& knobs, std::size_t first, std::size_t n) {
        const ControlBlock& controls = regions_.decide(knobs, first, n);
        const RolePixels fg = regions_.fg.pixels(first);
        const RolePixels plate = regions_.plate.pixels(first);
        float* const raw = raw_.data() + first;
        float* const opacity = opacity_.data() + first;
        const VeilMattes mattes{raw, regions_.decision.data() + first};
        const MatteParams density = matte_params(controls);
        const VeilParams veil = veil_params(controls);
        if (regions_.clean_plate) {
            matte_clean_plate(density, fg, plate, raw, n);
            unveil_clean_plate(veil, fg, plate, mattes, colour_.output(first), opacity, n);
        } else {
            matte_constant(density, fg, raw, n);
            unveil_constant(veil, fg, mattes, colour_.output(first), opacity, n);
        }
        output_matte(opacity, matte_.data() + first, n);
        return matte_.data() + first;
    }

    const std::vector<float>& decision() const { return regions_.decision; }

  private:
    Regions regions_;
    Planes colour_;
    std::vector<float> raw_, opacity_, matte_;
};

}  // namespace

std::vector<float> sample_mattes(const Setting& setting, std::span<const PlatedSample> samples,
                                 std::vector<float>* decision) {
    Mattes stages(setting, samples);
    const float* const matte = stages.matte(setting.knobs, 0, samples.size());
    if (decision != nullptr) *decision = stages.decision();
    return {matte, matte + samples.size()};
}

std::vector<Dial> add_matte_dials() {
    return {&K::brights, &K::darks, &K::warm, &K::cool};
}

Tuning analyse_add_matte(const Setting& setting, std::span<const PlatedSample> samples,
                         std::span<const PlatedSample> backing, std::span<const float> mattes) {
    const std::size_t asked = samples.size();
    std::vector<PlatedSample> all(samples.begin(), samples.end());
    all.insert(all.end(), backing.begin(), backing.end());
    Mattes stages(setting, all);

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
    return tune(setting.knobs, add_matte_dials(), setting.held, rays, all.size(), misses);
}
