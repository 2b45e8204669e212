// A session as text: the script that any front end reads, and beside the node's group one for the files.
//
//     Shot {
//         folder "/shows/a/settings"
//         fg "../plates/plate.####.exr"
//         frames "1001-1048"
//     }
//     Veloxa { … }
//     Matte { … }
//
// Names of files are relative to the script's folder; `folder` is where that was, for a script that was moved
// without its files. Within quotes %, " and line ends are written as %25, %22, %0A and %0D.
#pragma once

#include <string>

#include "session/State.h"
#include "shot/Caller.h"
#include "shot/node/Node.h"

namespace veloxa::viewer {

// `panel` holds the state's settings; `path` is where the text will lie.
std::string project_text(const State& state, const Zo::Image::KnobPanel& panel, const std::string& path);

// The files that a script names; none where it has no Shot group. Throws Error, FILE:LINE: what is wrong.
ShotFiles project_files(const std::string& text, const std::string& path);

// The state that a script holds. The settings are tried on `node`, a new one, which has them afterwards; what
// was measured of the shot is read from the file beside the script, if there is one. Throws Error, and warns
// of values beyond a knob's range.
State load_project(const std::string& path, Node& node, const Caller& caller);
// Writes the script, and what was measured of the shot beside it. Throws Error.
void save_project(const State& state, const Node& node, const std::string& path);

}  // namespace veloxa::viewer
