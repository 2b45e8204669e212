// The files that keying a frame makes, each with one of the pictures that a key gives.
#pragma once

#include <string>
#include <vector>

#include "shot/files/ImageFile.h"
#include "shot/frames/FramePattern.h"
#include "shot/node/Node.h"

namespace veloxa {

enum class Picture {
    kNode,       // what the knob "output_mode" says
    kComposite,  // the subject over the background
    kMatte,      // the key alone, as one channel
    kCut,        // the subject alone, premultiplied
};

struct KeyOutput {
    Picture picture = Picture::kNode;
    FramePattern file;
};

// Reads "FILE", for what the node makes, or "comp=FILE", "matte=FILE" and "cut=FILE". Throws UsageError for
// another word before =, and for a file that is named twice.
std::vector<KeyOutput> parse_outputs(const std::vector<std::string>& texts);

// The item of "output_mode" that the picture is rendered with; `own` is the node's. The matte is the same in
// all of them.
std::string mode_of(Picture picture, const std::string& own);

// The knob that holds it.
inline constexpr const char* kModeKnob = "output_mode";
// Has the node make that picture.
void turn_to(const Node& node, Picture picture);

// What the alpha of a picture means that was rendered with that item.
Alpha alpha_of(const std::string& mode);

}  // namespace veloxa
