// The tool that measures a shot frame by frame.
#include <cstdio>

#include "panel/InputFlags.h"
#include "tools/ToolRun.h"

using namespace Zo::Image;

void ToolRun::analyse_shot() {
    Knob& knob = *node_.panel.shot_knob();
    if (knob.flag(kKnobHeld)) {
        tell_held(knob);
        report_.failure = "the model of the shot is held";
        return;
    }
    if (node_.flag(kNoScreenColor)) {
        report_.failure = "no screen color is chosen";
        return;
    }
    const ShotModel frame = node_.measure_frame();
    report_.box = node_.image.input(0).info().box;
    if (frame.frames == 0) {
        report_.failure = "no backing is found in this frame";
        return;
    }
    ShotModel model;
    if (const auto shot = node_.panel.shot()) {
        const bool same = shot->width == frame.width && shot->height == frame.height;
        if (same && shot->fits(frame.screen, frame.encoding)) {
            model = *shot;
        } else {
            note("the frames before are of another size, screen or encoding: a new shot begins");
        }
    }
    model.add(frame);
    knob.new_undo(knob.name().c_str());
    knob.from_script(model.text());
    const std::array<double, 3>& sigma = frame.sigma;
    char text[200];
    std::snprintf(text, sizeof text,
                  "frame %d of the shot: noise %.4f,%.4f,%.4f, spill of the rims %.3f, %zu colors of rims",
                  model.frames, sigma[0], sigma[1], sigma[2], frame.spill, frame.rims.size());
    note(text);
}
