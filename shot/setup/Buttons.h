// The buttons of the node's panel that look at its images.
#pragma once

#include <vector>

#include "shot/setup/ScreenChoice.h"

namespace veloxa {

// Presses one, over the images that are on the node's inputs; `from` is the foreground. That which sets the
// node up does so as the command line's --auto does. Throws Error where the button could not do what it is
// for, Interrupted.
std::vector<Zo::Image::ToolReport> use_button(Node& node, Zo::Image::Knob& button, const NamedImage& from);

}  // namespace veloxa
