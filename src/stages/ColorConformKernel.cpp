#include "stages/ColorConformKernel.h"

#include <algorithm>

#include "controls/Controls.h"
#include "stages/ColorConformPixel.h"

using namespace kernel;

namespace {

ToneCurve tone_curve(std::int32_t darks, std::int32_t brights, std::int32_t mid_tones) {
    const double low = -(darks / 100.0);
    const double high = 1.0 / std::max(0.01, brights / 100.0) + low;
    const double width = high - low;
    double middle = 0.5 - mid_tones / 100.0 * 0.66;
    if (middle < 0.0) {
        middle = 0.0001;
    } else if (middle > 1.0) {
        middle = 0.9999;
    }
    const double bend = (0.5 / middle - middle) / (1.0 - middle);
    return {low, width, bend, bent(bend, (0.5 - low) / width)};
}

}  // namespace

ConformParams conform_params(const ControlBlock& controls) {
    const ControlTriple darks = controls.get(controls::kColorConformDarks);
    const ControlTriple brights = controls.get(controls::kColorConformBrights);
    const ControlTriple mid_tones = controls.get(controls::kColorConformMidTones);
    const auto percent = [&](int index) { return controls.get(index) / 100.0; };

    ConformParams p{};
    p.curve0 = tone_curve(darks[0], brights[0], mid_tones[0]);
    p.curve1 = tone_curve(darks[1], brights[1], mid_tones[1]);
    p.curveP = tone_curve(darks[2], brights[2], mid_tones[2]);
    const double saturation = percent(controls::kSaturation);
    const double brightness = percent(controls::kBrightness);
    p.hue = percent(controls::kHue);
    p.saturation = exp_of(saturation);
    p.value = brightness / kLog256;
    p.adjust = p.hue != 0.0 || saturation != 0.0 || brightness != 0.0;
    return p;
}
