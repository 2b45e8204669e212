// Chooses the node's screen colour from a plate.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "ImageFile.h"
#include "Node.h"

namespace veloxa {

// What --screen takes.
inline const std::vector<std::string> kScreenChoices{"auto", "green", "blue", "red"};

// Whether a screen colour was chosen: it is not 0, 0, 0, or one of the KNOB=VALUE settings names it.
bool has_screen_color(const Zo::Image::KnobPanel& panel, const std::vector<std::string>& sets);

void set_screen_color(Zo::Image::KnobPanel& panel, const std::array<double, 3>& color);

// Has the node look for the screen in the image, for a choice of the above ("" is auto), and says on standard
// error, unless `quiet`, what it found and why. `file` is the image's, for messages. Throws Error when no
// backing stands out, Interrupted.
void find_screen_color(Node& node, const Image& image, const std::string& file, const std::string& choice,
                       bool quiet);

}  // namespace veloxa
