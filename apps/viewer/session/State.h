// What one works on, and what undo goes back to: the files of a shot, the keyer's settings, drawn mattes.
#pragma once

#include <array>
#include <string>

#include "session/Settings.h"
#include "shot/frames/FrameLoader.h"
#include "shot/mattes/DrawnMatte.h"

namespace veloxa::viewer {

// As the command line names them; see shot/setup/KeySetup.h.
struct ShotFiles {
    std::array<std::string, kInputCount> inputs;
    std::string frames;
    std::string fit;
    ColourOptions colour;

    friend bool operator==(const ShotFiles& a, const ShotFiles& b) {
        return a.inputs == b.inputs && a.frames == b.frames && a.fit == b.fit &&
               a.colour.in_space == b.colour.in_space && a.colour.out_space == b.colour.out_space;
    }
};

struct State {
    ShotFiles files;
    Settings settings;
    DrawnMattes mattes;

    friend bool operator==(const State&, const State&) = default;
};

}  // namespace veloxa::viewer
