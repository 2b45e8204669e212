// Strokes of the toolbar's sampling tools, given as text.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ZoImage/Box.h"
#include "shot/node/KnobValues.h"
#include "shot/node/Node.h"

namespace veloxa {

struct Stroke {
    Zo::Image::Knob* tool;     // a tool button of the node's panel
    Zo::Image::Box box;        // of the foreground's display window, y upward
    std::optional<int> frame;  // of a sequence; without it the first that can be read
};

// Reads TOOL=X,Y,R,T or TOOL@FRAME=X,Y,R,T. A tool goes by its knob's name; "toolbar_", capitals and
// underscores may be left out. Throws UsageError, for a tool that does not exist with those that there are.
Stroke parse_stroke(const Zo::Image::KnobPanel& panel, const std::string& text);
// The tool button of a name as above.
Zo::Image::Knob& tool_named(const Zo::Image::KnobPanel& panel, const std::string& name);

// What a tool did. Samples are all that the tool keeps, those of earlier strokes too.
struct ToolReport {
    int samples() const { return satisfied + unsatisfied + unusable; }

    std::string tool;
    Zo::Image::Box box{};
    int frame = 0;
    std::vector<KnobChange> changes;
    int satisfied = 0;
    int unsatisfied = 0;
    int unusable = 0;               // not finite
    std::vector<std::string> held;  // knobs that the tool could have turned
    std::vector<std::string> notes;
};

// Strokes over the images that are on the node's inputs.
ToolReport apply_stroke(const Node& node, const Stroke& stroke);

}  // namespace veloxa
