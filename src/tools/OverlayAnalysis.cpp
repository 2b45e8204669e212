#include "tools/OverlayAnalysis.h"

#include "screen/ClearRegionKernel.h"
#include "screen/CrudeMatteKernel.h"

using K = KnobStorage;

namespace {

class Regions {
  public:
    Regions(const Setting& setting, std::span<const OverlaySample> samples)
        : samples_(samples),
          fg_(samples.size(), setting.color_index()),
          plate_(samples.size(), setting.color_index()),
          crude_(samples.size()),
          region_(samples.size()),
          trial_(setting),
          clean_plate_(setting.clean_plate()) {
        for (std::size_t i = 0; i < samples.size(); ++i) {
            fg_.put(i, samples[i].fg);
            plate_.put(i, samples[i].plate);
        }
        fg_.normalise();
        plate_.normalise();
    }

    // Of n samples from `first` on.
    void decide(const KnobStorage& knobs, std::size_t first, std::size_t n) {
        const ControlBlock& controls = trial_.with(knobs);
        const RolePixels fg = fg_.pixels(first);
        const RolePixels plate = plate_.pixels(first);
        float* const crude = clean_plate_ ? crude_.data() + first : nullptr;
        if (clean_plate_) crude_matte(crude_matte_params(controls), fg, plate, crude, n);
        clear_region(clear_region_params(controls), fg, clean_plate_ ? &plate : nullptr,
                     {nullptr, crude, nullptr}, region_.data() + first, n);
    }
    bool agrees(std::size_t i) const { return (region_[i] != 0.0f) == samples_[i].screen; }

  private:
    std::span<const OverlaySample> samples_;
    Planes fg_, plate_;
    std::vector<float> crude_, region_;
    TrialControls trial_;
    bool clean_plate_;
};

}  // namespace

std::vector<bool> overlay_agrees(const Setting& setting, std::span<const OverlaySample> samples) {
    Regions regions(setting, samples);
    regions.decide(setting.knobs, 0, samples.size());
    std::vector<bool> agrees(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) agrees[i] = regions.agrees(i);
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
    hold(dials, setting.held);
    return dials;
}

Tuning analyse_overlay(const Setting& setting, std::span<const OverlaySample> samples) {
    const std::vector<Dial> dials = overlay_dials(setting);
    std::vector<Ray> rays{{1, 1, 0, 0, 0, 0},   {0, 0, 1, 1, 0, 0},   {0, 0, 0, 0, 1, 1},
                          {1, 0, 0, 1, 0, 0},   {0, 1, 1, 0, 0, 0},   {1, 1, 1, 1, 0, 0},
                          {1, 1, 0, 0, -1, -1}, {1, 0, 0, 0, 0, -1},  {0, 1, 0, 0, -1, 0},
                          {1, 1, 1, 1, -1, -1}, {1, 1, -1, -1, 0, 0}, {1, 0, -1, 0, 0, 0},
                          {1, 0, 0, -1, 0, 0},  {0, 1, -1, 0, 0, 0},  {0, 1, 0, -1, 0, 0}};
    for (Ray& ray : rays) ray.resize(dials.size());

    Regions regions(setting, samples);
    const auto misses = [&](const KnobStorage& knobs, std::size_t first, std::span<double> out) {
        regions.decide(knobs, first, out.size());
        for (std::size_t i = 0; i < out.size(); ++i) out[i] = regions.agrees(first + i) ? 0.0 : 1.0;
    };
    return tune(setting.knobs, dials, rays, samples.size(), misses);
}
