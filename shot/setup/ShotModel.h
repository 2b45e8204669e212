// What the node measures over a shot: which frames stand for it, and the file that keeps it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "shot/frames/FramePattern.h"
#include "shot/node/Node.h"

namespace veloxa {

inline constexpr int kShotFrames = 12;  // that are measured when nobody says how many

// At most so many frames, from the first to the last, evenly spread.
std::vector<int> spread_over(const FrameRange& frames, int most);

// The file that keeps the shot beside a script: its name with the extension .shot.
std::string shot_beside(const std::string& script);

// Where frames of a sequence take what they are keyed by, if they are keyed by a shot.
struct ShotSource {
    std::string file;                    // that holds it; else
    std::optional<FrameRange> measured;  // frames that it is measured on, all or some; nothing for a still
};
// `file` and `frames` are asked for, empty for none. A file beside the script is the next choice.
ShotSource shot_source(const std::string& file, const std::string& frames, const std::string& script,
                       const FrameRange& all);

// The knob that holds the shot is part of the node, not of its scripts. Throws Error, FILE: line N: what is
// expected.
void load_shot(Node& node, const std::string& path);
void save_shot(const Node& node, const std::string& path, bool overwrite);
bool has_shot(const Node& node);
// What save_shot writes; empty without a shot.
std::string shot_text(const Node& node);
// Whether the node keys by unmixing, which alone reads the shot.
bool keys_by_shot(const Node& node);

}  // namespace veloxa
