// What a panel does to the settings of a session: the calls that its controls make. Window thread.
#pragma once

#include <functional>
#include <string>

#include "ZoImage/KnobPanel.h"

namespace veloxa::viewer {

class PanelEdits {
  public:
    virtual ~PanelEdits() = default;

    // The knobs as they stand. Controls read values, enables and labels from here and write through the calls
    // below alone.
    virtual Zo::Image::KnobPanel& panel() = 0;

    // What comes until end_edit() is one step to undo, as the drag of a slider. Outside of the two each call
    // is a step of its own.
    virtual void begin_edit(const std::string& name) = 0;
    virtual void end_edit() = 0;

    virtual void set(Zo::Image::Knob& knob, double value, int i = 0) = 0;
    virtual void reset(Zo::Image::Knob& knob) = 0;
    // Buttons of every kind but tools of the toolbar; those that look at the picture work in the background.
    virtual void press(Zo::Image::Knob& button) = 0;
    // Makes a tool of the toolbar the pointer's mode; null for none.
    virtual void use_tool(Zo::Image::Knob* tool) = 0;
    virtual Zo::Image::Knob* tool() const = 0;
    // Has the next place that the user points at in the picture set a colour knob; null gives that up.
    virtual void pick_colour(Zo::Image::Knob* knob) = 0;
    virtual Zo::Image::Knob* picking() const = 0;
};

}  // namespace veloxa::viewer
