#include "panel/VeloxaSample_Knob.h"

using namespace Zo::Image;

VeloxaSample_Knob::VeloxaSample_Knob(std::string_view name, Op* owner)
    : VeloxaSample(owner), Knob(Kind::kCustom, name, name) {
    visible(false);
}

bool VeloxaSample_Knob::from_script(std::string_view text) {
    if (!read(text)) return false;
    changed();
    return true;
}

void VeloxaSample_Knob::to_script(std::ostream& out, bool quote) const {
    write(out, quote);
}

bool VeloxaSample_Knob::accepts_script(std::string_view text) const {
    return VeloxaSample(owner()).read(text);
}
