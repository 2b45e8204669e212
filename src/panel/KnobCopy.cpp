#include "panel/KnobCopy.h"

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

// Copies the knob of one row.
struct Copy {
    void operator()(float KnobStorage::*field) const {
        const std::int32_t v = value(knobs.*field, 3);
        controls.set(target.controls.first, v);
        if (target.controls.second != KnobTarget::kNone) controls.set(target.controls.second, v);
    }
    void operator()(std::int32_t KnobStorage::*field) const {
        controls.set(target.controls.first, value(static_cast<float>(knobs.*field), 3));
    }
    void operator()(KnobStorage::Color KnobStorage::*field) const {
        const auto level = [&](int n) {
            const int channel = target.by_role ? ChannelForRole(controls.get(controls::kColorIndex), n) : n;
            const auto i = static_cast<std::size_t>(channel);
            return value((knobs.*field)[i], i);
        };
        controls.set(target.controls, level(0), level(1), level(2));
    }
    void operator()(KnobStorage::Size KnobStorage::*field) const {
        const KnobStorage::Size& size = knobs.*field;
        controls.set(target.controls.first, size[0]);
        if (target.height == nullptr) return controls.set(target.controls.second, size[1]);
        controls.*target.height = Zo::Image::to_int(size[1]);
    }
    template <class T>
    void operator()(T) const {}

    std::int32_t value(float v, std::size_t channel) const {
        const float scaled = target.factor * v + target.offset;
        const bool plain = target.scale == KnobTarget::Scale::kNumber;
        return Zo::Image::to_int(plain ? scaled : encode(scaled, knobs.encodePivot[channel]));
    }

    const KnobStorage& knobs;
    const KnobTarget& target;
    ControlBlock& controls;
};

}  // namespace

void copy_knobs(const KnobStorage& knobs, std::uint32_t input_flags, ControlBlock& controls) {
    controls.set(controls::kColorIndex, color_index(knobs));
    const auto flag = [&](std::uint32_t bit) { return (input_flags & bit) != 0 ? 1 : 0; };
    controls.set(controls::kCleanPlate, flag(kCpUsable));
    controls.set(controls::kHoldout, flag(kHmConnected));
    controls.set(controls::kGarbage, flag(kGmConnected));
    controls.set(controls::kScreenCorrect, knobs.overlay_mode != 0 || knobs.screen_correct ? 1 : 0);
    bool on = true;
    for (const KnobRow& row : knob_table()) {
        if (row.kind == KnobRow::Kind::kTab) on = row.on(knobs);
        const bool copied = row.target.controls.first != KnobTarget::kNone && (on || row.target.always);
        if (copied) std::visit(Copy{knobs, row.target, controls}, row.field);
    }
}
