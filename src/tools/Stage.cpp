#include "tools/Stage.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "panel/InputFlags.h"
#include "panel/KnobCopy.h"
#include "screen/ClearRegionKernel.h"
#include "screen/CrudeMatteKernel.h"
#include "stages/NormalizeKernel.h"

bool Setting::clean_plate() const {
    return (input_flags & kCpUsable) != 0;
}

TrialControls::TrialControls(const Setting& setting)
    : block_(values_.data(), 0), input_flags_(setting.input_flags) {
    for (std::size_t i = 0; i < values_.size(); ++i) {
        values_[i] = setting.controls.stored(static_cast<int>(i));
    }
}

const ControlBlock& TrialControls::with(const KnobStorage& knobs) {
    copy_knobs(knobs, input_flags_, block_);
    return block_;
}

Planes::Planes(std::size_t samples, std::int32_t color_index) : color_index_(color_index) {
    for (auto& plane : planes_) plane.resize(samples);
}

void Planes::put(std::size_t i, const VeloxaSample::Sample& sample) {
    for (int role = 0; role < 4; ++role) {
        const int slot = role < 3 ? ChannelForRole(color_index_, role) : 3;
        planes_[static_cast<std::size_t>(role)][i] = sample[static_cast<std::size_t>(slot)];
    }
}

void Planes::normalise() {
    std::vector<float> out(size());
    for (std::size_t role = 0; role < 3; ++role) {
        ::normalize(planes_[role].data(), out.data(), out.size());
        planes_[role] = out;
    }
}

const ControlBlock& Regions::decide(const KnobStorage& knobs, std::size_t first, std::size_t n) {
    const ControlBlock& controls = trial_.with(knobs);
    const RolePixels pixels = fg.pixels(first);
    const RolePixels plates = plate.pixels(first);
    float* const crude = clean_plate ? crude_.data() + first : nullptr;
    if (clean_plate) crude_matte(crude_matte_params(controls), pixels, plates, crude, n);
    clear_region(clear_region_params(controls), pixels, clean_plate ? &plates : nullptr,
                 {nullptr, crude, nullptr}, decision.data() + first, n);
    return controls;
}

bool usable(const VeloxaSample::Sample& sample) {
    return std::ranges::all_of(sample, [](float v) { return std::isfinite(v); });
}

VeloxaSample::Sample as_saved(const VeloxaSample::Sample& sample) {
    VeloxaSample::Sample saved = sample;
    for (float& v : saved) {
        char text[32];
        const auto end = std::to_chars(text, text + sizeof text, v, std::chars_format::general, 6).ptr;
        double read = 0.0;
        std::from_chars(text, end, read);
        v = static_cast<float>(read);
    }
    return saved;
}
