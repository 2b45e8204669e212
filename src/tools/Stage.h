// What the analyses share: samples as the kernels take them, and the controls that trial knobs would give.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include "controls/ChannelRoles.h"
#include "controls/Controls.h"
#include "panel/VeloxaSample.h"
#include "tools/Tuner.h"

// The node as it stands.
struct Setting {
    const KnobStorage& knobs;
    const ControlBlock& controls;
    std::uint32_t input_flags;
    KnobFields held{};  // what no analysis turns

    std::int32_t color_index() const { return controls.get(controls::kColorIndex); }
    bool clean_plate() const;
};

// A copy of the node's controls with the sections of trial knobs written over them.
class TrialControls {
  public:
    explicit TrialControls(const Setting& setting);
    const ControlBlock& with(const KnobStorage& knobs);

  private:
    std::array<std::int32_t, ControlBlock::kCount> values_;
    ControlBlock block_;
    std::uint32_t input_flags_;
};

// Planes of samples in role order, beside their fourth value.
class Planes {
  public:
    Planes(std::size_t samples, std::int32_t color_index);

    std::size_t size() const { return planes_[0].size(); }
    void put(std::size_t i, const VeloxaSample::Sample& sample);
    // From the host's values to the working scale.
    void normalise();
    // From sample `first` on.
    RolePixels pixels(std::size_t first = 0) const {
        return {planes_[0].data() + first, planes_[1].data() + first, planes_[2].data() + first};
    }
    RoleOutput output(std::size_t first = 0) {
        return {planes_[0].data() + first, planes_[1].data() + first, planes_[2].data() + first};
    }
    std::vector<float>& role(std::size_t n) { return planes_[n]; }
    const std::vector<float>& role(std::size_t n) const { return planes_[n]; }
    std::vector<float>& alpha() { return planes_[3]; }
    const std::vector<float>& alpha() const { return planes_[3]; }

  private:
    std::array<std::vector<float>, 4> planes_;
    std::int32_t color_index_;
};

// What the clear region makes of samples, which have an `fg` and a `plate` in the host's values.
class Regions {
  public:
    template <class T>
    Regions(const Setting& setting, std::span<const T> samples)
        : fg(samples.size(), setting.color_index()),
          plate(samples.size(), setting.color_index()),
          decision(samples.size()),
          clean_plate(setting.clean_plate()),
          crude_(samples.size()),
          trial_(setting) {
        for (std::size_t i = 0; i < samples.size(); ++i) {
            fg.put(i, samples[i].fg);
            plate.put(i, samples[i].plate);
        }
        fg.normalise();
        plate.normalise();
    }

    // Of n samples from `first` on. Returns the controls that the knobs give.
    const ControlBlock& decide(const KnobStorage& knobs, std::size_t first, std::size_t n);

    Planes fg, plate;  // on the working scale
    std::vector<float> decision;
    const bool clean_plate;

  private:
    std::vector<float> crude_;
    TrialControls trial_;
};

// What a sample misses that is `over` what is allowed, in levels; most of all where that is no number.
inline double miss_of(double over) {
    return over <= 0.0 ? 0.0 : std::isfinite(over) ? over / 255.0 : 2.0;
}

// Whether an analysis can use a sample: it says nothing when a component is NaN or infinite.
bool usable(const VeloxaSample::Sample& sample);

// The sample as it reads back from a script, so that a saved list gives the same knobs.
VeloxaSample::Sample as_saved(const VeloxaSample::Sample& sample);
