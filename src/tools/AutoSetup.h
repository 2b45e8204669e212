// Sets a node up from nothing but its foreground: what a compositor would do first, by the same tools. Where
// no screen colour is chosen it looks for the screen first.
//
// Then it makes the unmixing matte's backing and solids for the frame that is on the node's inputs, tells
// what it saw, and has the node unmix, unless too little of the backing is sure, film correction is on, or a
// knob is held that unmixing would pass over (MethodChoice.h). Unmixing measures the plate itself: there is
// no more to do. How the plate is encoded is for the front end to set, which knows the file.
//
// For the colour difference it looks at the node's own alpha, in tiles. A tile is judged
// together with those around it, for nearer to the subject's outline there may be hair: solid where all are
// all but opaque, backing where none is half opaque, noise where none shows more than a trace. Its steps, in
// order:
//
//   output     matte_scale "linear" and merge "add", which keep thin hair and soft edges
//   overlay    strokes of add_overlay on backing tiles that the clear region leaves out most
//   density    brights as low as leaves the solid tiles as opaque as they are: at the default
//              mixed pixels come out too dense
//   clean-up   gentle, for the same reason and for grain beside the clear region; then strokes of
//              remove_noise on backing tiles that are noisy still
//   spill      warm and cool of the Spill tab as low as leaves the solid tiles' colours alone (SpillSetup.h)
//
// What takes from the solid tiles is taken back. Where there are none the density and the spill stay; so does
// clean-up that is on already.
//
// Knobs that are held stay as they are, and the tools turn the others. So do "brights" where a script names
// any knob of the density, and the spill where it names any of that: a stroke may have found them together.
// On top of a script the strokes leave what is decided as it is.
#pragma once

#include <vector>

#include "tools/ToolNode.h"

// Throws GivenUp. One report a step that changed something or has something to say; the samples are those of
// its strokes. A last one, named "auto", notes what was left alone. Where there is no screen, nothing but the
// report on that.
std::vector<Zo::Image::ToolReport> set_up(const ToolNode& node);
