// Which way to the matte suits the plate that is on a node's inputs.
#pragma once

#include <span>
#include <string>

#include "tools/ToolNode.h"

// What the operators of the unmixing matte find before they solve anything.
struct PlateLook {
    bool keyable = false;  // enough of the backing is sure for the rest to be told from it
    std::string seen;      // for the user
};

// Makes the backing and the solids of the whole frame, on the node's inputs as they are and for its present
// screen colour. Throws GivenUp.
PlateLook look_at_plate(const ToolNode& node, Zo::Image::Renderer& renderer);

// Why the knobs ask for the colour difference: film is at work, or a knob is held that unmixing would leave
// without effect, other than at what unmixing does anyway. Empty where nothing asks for it.
std::string difference_asked_for(const KnobStorage& knobs, std::span<Zo::Image::Knob* const> all);
