// What people see of knobs.
#pragma once

#include <string>
#include <string_view>

#include "ZoImage/Knob.h"

namespace Zo::Image {

// A value of the knob as a double to show. Widened, 0.51f reads 0.50999999046325684: of a knob that keeps
// floats, the shortest decimal that is read back as the same float.
double shown(const Knob& knob, double value);

// A tooltip without its tags, an item of a list or a new paragraph on a line of its own, named and numbered
// characters (&lt; &#39; &#x27;) as themselves. What looks like neither stays as it is.
std::string plain_text(std::string_view markup);

// A tool's label, "@Icon; word ", taken apart: the icon's name, empty without a semicolon, and the word.
struct ToolLabel {
    std::string icon;
    std::string word;
};
ToolLabel tool_label(std::string_view label);

}  // namespace Zo::Image
