#include "shot/setup/ScreenChoice.h"

#include <algorithm>
#include <cstdio>

#include "shot/Errors.h"
#include "shot/setup/Pick.h"
#include "shot/setup/ScreenEstimate.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

template <class... Values>
std::string text_of(const char* format, Values... values) {
    char text[256];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

}  // namespace

bool has_screen_color(const KnobPanel& panel, const std::vector<std::string>& sets) {
    const Knob& knob = panel.get("screen_color");
    if (knob.get_value(0) != 0.0 || knob.get_value(1) != 0.0 || knob.get_value(2) != 0.0) return true;
    return std::any_of(sets.begin(), sets.end(),
                       [](const std::string& set) { return set.starts_with("screen_color="); });
}

void set_screen_color(KnobPanel& panel, const std::array<double, 3>& color) {
    Knob& knob = panel.get("screen_color");
    for (int i = 0; i < 3; ++i) knob.set_value(color[static_cast<std::size_t>(i)], i);
    knob.changed();
}

void estimate_screen_color(KnobPanel& panel, const Image& image, const std::string& file,
                           const std::string& choice, const Caller& caller) {
    const ScreenEstimate found = estimate_screen(image, screen_named(choice));
    const char* const name = screen_name(found.primary);
    if (!found.found()) {
        throw Error(file,
                    text_of("no backing stands out: the likeliest, %s, has confidence %.2f, below %.2f; "
                            "sample the backing with --pick X,Y,R,T",
                            name, found.confidence(), found.needed));
    }
    set_screen_color(panel, found.color);
    caller.tell(
        file + ": " +
        text_of("%s screen, screen_color %.4g,%.4g,%.4g: colours like it fill %.0f%% of the frame, borders "
                "counting most, another primary's %.0f%% (confidence %.2f)",
                name, found.color[0], found.color[1], found.color[2], 100.0 * found.share,
                100.0 * found.rival, found.confidence()));
}

void choose_screen_color(KnobPanel& panel, const ScreenOptions& options, bool chosen,
                         const std::function<NamedImage()>& image, const Caller& caller) {
    if (!options.pick.empty()) {
        set_screen_color(panel, mean_color(*image().image, parse_box("--pick", options.pick)));
    } else if (!options.screen.empty() || !chosen) {
        const NamedImage from = image();
        estimate_screen_color(panel, *from.image, from.file, options.screen, caller);
    }
}

}  // namespace veloxa
