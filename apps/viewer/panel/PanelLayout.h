// Which knob of a panel stands where, and what it is called there. Window thread.
#pragma once

#include <QString>
#include <string>
#include <vector>

#include "ZoImage/KnobPanel.h"

namespace veloxa::viewer {

struct PanelSection {
    std::string label;                    // of the tab; empty for what stands before the first
    Zo::Image::Knob* enable = nullptr;    // switches the tab; not among the knobs
    std::vector<Zo::Image::Knob*> knobs;  // hidden ones too, lists of samples never
};

struct PanelLayout {
    std::vector<PanelSection> sections;
    // Between the ends of toolbars; a separator between two toolbars is null.
    std::vector<Zo::Image::Knob*> toolbar;
    // Buttons that look at the picture and stand on no tab.
    std::vector<Zo::Image::Knob*> actions;
};

PanelLayout lay_out(const Zo::Image::KnobPanel& panel);

// The knob's label, of a link without one its target's; of a tool the word behind its icon.
QString label_of(const Zo::Image::Knob& knob);
// What assistive programs and menus call it: "brights, Density"; the knob stands in `section`, which may be
// empty.
QString full_name(const Zo::Image::Knob& knob, const QString& section);
// Its tooltip as plain text with lines of a width to read, and its script name.
QString explanation(const Zo::Image::Knob& knob);

}  // namespace veloxa::viewer
