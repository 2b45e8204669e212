// Chooses the node's screen colour from a plate, by itself or from a box that the command line gives.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "shot/Caller.h"
#include "shot/image/Image.h"
#include "shot/node/Node.h"

namespace veloxa {

// Reads "X,Y,R,T": columns X to R - 1, rows Y to T - 1 from the bottom. Throws UsageError, which begins with
// the name of the option.
Zo::Image::Box parse_box(const std::string& option, const std::string& text);

// Throws UsageError unless the box lies in the image's display window.
void check_inside(const std::string& option, const Image& image, const Zo::Image::Box& box);

// The mean red, green and blue over the box of --pick; beyond the data window its edge pixels repeat. Throws
// UsageError as check_inside does, Error when the mean is not finite.
std::array<double, 3> mean_color(const Image& image, const Zo::Image::Box& box);

// What --screen takes.
inline const std::vector<std::string> kScreenChoices{"auto", "green", "blue", "red"};

// Whether a screen colour was chosen: it is not 0, 0, 0, or one of the KNOB=VALUE settings names it.
bool has_screen_color(const Zo::Image::KnobPanel& panel, const std::vector<std::string>& sets);

// Where the screen colour comes from when not from the knobs themselves; at most one of the two is set.
struct ScreenOptions {
    std::string pick;    // a box, as parse_box reads it
    std::string screen;  // one of kScreenChoices
};

struct NamedImage {
    std::shared_ptr<const Image> image;
    std::string file;
};

// Sets the colour as the options say; without any, as for auto unless it is `chosen` already. Asks for the
// image when it needs it, and tells what the node found there and why. Throws Error when no backing stands
// out, Interrupted.
void choose_screen_color(Node& node, const ScreenOptions& options, bool chosen,
                         const std::function<NamedImage()>& image, const Caller& caller);

}  // namespace veloxa
