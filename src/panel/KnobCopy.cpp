#include "panel/KnobCopy.h"

#include <vector>

#include "ZoImage/Convert.h"
#include "controls/ChannelRoles.h"
#include "controls/Controls.h"
#include "panel/InputFlags.h"
#include "panel/KnobTable.h"
#include "stages/WorkingScale.h"

namespace {

// The primary that the backing colour shows, once encoded: green or red where that component is the greatest
// alone, else blue.
std::int32_t color_index(const KnobStorage& k) {
    const auto level = [&](std::size_t i) { return encode(k.screen_color[i], k.encodePivot[i]); };
    const float red = level(0);
    const float green = level(1);
    const float blue = level(2);
    if (green > red && green > blue) return 1;
    return red > green && red > blue ? 2 : 0;
}

struct Copy {
    void operator()(float v) const {
        const std::int32_t level = value(v, 3);
        controls.set(target.controls.first, level);
        if (target.controls.second != KnobTarget::kNone) controls.set(target.controls.second, level);
    }
    void operator()(std::int32_t v) const { (*this)(static_cast<float>(v)); }
    void operator()(const KnobStorage::Color& color) const {
        const auto level = [&](int n) {
            const int channel = target.by_role ? ChannelForRole(controls.get(controls::kColorIndex), n) : n;
            const auto i = static_cast<std::size_t>(channel);
            return value(color[i], i);
        };
        controls.set(target.controls, level(0), level(1), level(2));
    }
    void operator()(const KnobStorage::Size& size) const {
        controls.set(target.controls.first, size[0]);
        if (target.height == nullptr) return controls.set(target.controls.second, size[1]);
        controls.*target.height = Zo::Image::to_int(size[1]);
    }

    std::int32_t value(float v, std::size_t channel) const {
        const float scaled = target.factor * v + target.offset;
        const bool plain = target.scale == KnobTarget::Scale::kNumber;
        return Zo::Image::to_int(plain ? scaled : encode(scaled, knobs.encodePivot[channel]));
    }

    const KnobStorage& knobs;
    const KnobTarget& target;
    ControlBlock& controls;
};

template <class T>
struct Step {
    T KnobStorage::*field;
    KnobTarget target;
    const KnobRow* tab;
};

template <class T>
std::vector<Step<T>> steps_of(std::span<const KnobRow> table) {
    std::vector<Step<T>> steps;
    const KnobRow* tab = &table.front();  // what stands before all tabs waits for no switch
    for (const KnobRow& row : table) {
        if (row.kind == KnobRow::Kind::kTab) tab = &row;
        const auto* const field = std::get_if<T KnobStorage::*>(&row.field);
        const bool copied = field != nullptr && row.target.controls.first != KnobTarget::kNone;
        if (copied) steps.push_back({*field, row.target, tab});
    }
    return steps;
}

// Copies the knobs of one type. The tuner copies for every trial, so the table is walked once for all.
template <class T>
void copy_all(const KnobStorage& knobs, ControlBlock& controls) {
    static const std::vector<Step<T>> steps = steps_of<T>(knob_table());
    for (const Step<T>& step : steps) {
        const bool copied = step.target.always || step.tab->on(knobs);
        if (copied) Copy{knobs, step.target, controls}(knobs.*step.field);
    }
}

}  // namespace

void copy_knobs(const KnobStorage& knobs, std::uint32_t input_flags, ControlBlock& controls) {
    controls.set(controls::kColorIndex, color_index(knobs));
    const auto flag = [&](std::uint32_t bit) { return (input_flags & bit) != 0 ? 1 : 0; };
    controls.set(controls::kCleanPlate, flag(kCpUsable));
    controls.set(controls::kHoldout, flag(kHmConnected));
    controls.set(controls::kGarbage, flag(kGmConnected));
    controls.set(controls::kScreenCorrect, knobs.overlay_mode != 0 || knobs.screen_correct ? 1 : 0);
    copy_all<float>(knobs, controls);
    copy_all<std::int32_t>(knobs, controls);
    copy_all<KnobStorage::Color>(knobs, controls);
    copy_all<KnobStorage::Size>(knobs, controls);
}
