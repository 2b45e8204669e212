// Uses of the node's tools; strokes of those of the toolbar are given as text.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ZoImage/Box.h"
#include "shot/node/Node.h"
#include "shot/setup/ScreenChoice.h"

namespace veloxa {

struct Stroke {
    Zo::Image::Knob* tool;              // a tool button of the node's panel
    std::vector<Zo::Image::Box> areas;  // of the foreground's display window, y upward; may overlap
    std::optional<int> frame;           // of a sequence; without it the first that can be read
};

// Reads TOOL=X,Y,R,T or TOOL@FRAME=X,Y,R,T, with a + between the boxes of a stroke that has several. A tool
// goes by its knob's name; "toolbar_", capitals and underscores may be left out. Throws UsageError, for a
// tool that does not exist with the nearest, or those that there are.
Stroke parse_stroke(const Zo::Image::KnobPanel& panel, const std::string& text);
// Throws UsageError, which begins with the option, unless all areas lie in the image's display window.
void check_inside(const std::string& option, const Image& image, const Stroke& stroke);
// Over the images that are on the node's inputs. All throw Interrupted when the node's flag is raised.
Zo::Image::ToolReport apply_stroke(const Node& node, const Stroke& stroke);
// Has the node set itself up for the foreground, which is on its inputs; what the settings named stays, and
// so does the method where one of the strokes to come turns knobs of the colour difference. For the unmixing
// matte the foreground's file tells its encoding. Throws Error where no backing stands out.
std::vector<Zo::Image::ToolReport> set_up_automatically(Node& node, const NamedImage& from,
                                                        const std::vector<Stroke>& strokes);

}  // namespace veloxa
