#include "shot/setup/Buttons.h"

#include "shot/Errors.h"
#include "shot/setup/Stroke.h"

namespace veloxa {

using namespace Zo::Image;

std::vector<ToolReport> use_button(Node& node, Knob& button, const NamedImage& from) {
    if (button.name() == "set_up") return set_up_automatically(node, from, {});
    std::vector<ToolReport> reports = node.use_tool(button);
    if (!reports.empty() && !reports.back().failure.empty()) throw Error(from.file, reports.back().failure);
    return reports;
}

}  // namespace veloxa
