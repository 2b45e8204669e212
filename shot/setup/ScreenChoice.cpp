#include "shot/setup/ScreenChoice.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "shot/Errors.h"
#include "shot/Numbers.h"
#include "shot/node/ImageSource.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

constexpr int kForeground = 0;

// Puts an image on the node's foreground for a scope.
class Shown {
  public:
    Shown(Iop& node, const std::shared_ptr<const Image>& image)
        : node_(node), before_(node.input_op(kForeground)) {
        source_.set(image, Hash{});
        node_.set_input(kForeground, &source_);
    }
    ~Shown() { node_.set_input(kForeground, before_); }
    Shown(const Shown&) = delete;
    Shown& operator=(const Shown&) = delete;

  private:
    Iop& node_;
    Op* before_;
    ImageSource source_{NodeContext{}};
};

void set_screen_color(KnobPanel& panel, const std::array<double, 3>& color) {
    Knob& knob = panel.get("screen_color");
    for (int i = 0; i < 3; ++i) knob.set_value(color[static_cast<std::size_t>(i)], i);
    knob.changed();
}

void find_screen_color(Node& node, const NamedImage& from, const std::string& choice, const Caller& caller) {
    Knob& button = node.panel().get("find_screen");
    const auto& choices = kScreenChoices;
    const auto chosen = std::find(choices.begin(), choices.end(), choice.empty() ? choices.front() : choice);
    button.set_value(static_cast<double>(chosen - choices.begin()));
    const Shown shown(node.image(), from.image);
    const ToolReport found = node.use_tool(button).front();
    if (!found.failure.empty()) {
        throw Error(from.file, found.failure + "; sample the backing with --pick X,Y,R,T");
    }
    caller.tell(from.file + ": " + found.notes.front());
}

}  // namespace

Box parse_box(const std::string& option, const std::string& text) {
    Box box;
    std::string_view rest = text;
    const bool good = take(rest, box.x) && take(rest, ',') && take(rest, box.y) && take(rest, ',') &&
                      take(rest, box.r) && take(rest, ',') && take(rest, box.t);
    if (!good || !rest.empty())
        throw UsageError(option + " " + text + ": expected X,Y,R,T, as in 10,20,30,40");
    if (box.empty())
        throw UsageError(option + " " + text + ": the box is empty; R must be above X and T above Y");
    return box;
}

void check_inside(const std::string& option, const Image& image, const Box& box) {
    const Box& frame = image.info.format.box;
    if (!frame.contains(box)) {
        throw UsageError(option + ": the box reaches outside the foreground, which is " + size_text(frame));
    }
}

std::array<double, 3> mean_color(const Image& image, const Box& box) {
    check_inside("--pick", image, box);
    const Box& data = image.info.box;
    std::array<double, 3> mean{};
    for (const Channel c : kMaskRgb) {
        if (!image.has(c)) continue;
        double sum = 0.0;
        for (int y = box.y; y < box.t; ++y) {
            const float* line = image.line(c, std::clamp(y, data.y, data.t - 1));
            for (int x = box.x; x < box.r; ++x) {
                sum += static_cast<double>(line[std::clamp(x, data.x, data.r - 1) - data.x]);
            }
        }
        const double value = sum / (static_cast<double>(box.width()) * box.height());
        if (!std::isfinite(value)) throw Error("--pick: the box holds values that are not finite");
        mean[static_cast<std::size_t>(c - kRed)] = value;
    }
    return mean;
}

bool has_screen_color(const KnobPanel& panel, const std::vector<std::string>& sets) {
    const Knob& knob = panel.get("screen_color");
    if (knob.get_value(0) != 0.0 || knob.get_value(1) != 0.0 || knob.get_value(2) != 0.0) return true;
    return std::any_of(sets.begin(), sets.end(),
                       [](const std::string& set) { return set.starts_with("screen_color="); });
}

void choose_screen_color(Node& node, const ScreenOptions& options, bool chosen,
                         const std::function<NamedImage()>& image, const Caller& caller) {
    if (!options.pick.empty()) {
        set_screen_color(node.panel(), mean_color(*image().image, parse_box("--pick", options.pick)));
    } else if (!options.screen.empty() || !chosen) {
        find_screen_color(node, image(), options.screen, caller);
    }
}

}  // namespace veloxa
