// What the node remembers of strokes beside its six saved lists, for as long as it lives; nothing of it is
// saved. Scripts hold the knob values that the tools found, so they render alike without it.
//
//   overlay tools    pixels under each stroke, beside the saved means; dropped when those are fewer than
//                    the latest stroke left, as after an undo
//   add matte        pixels, and the backing's pixels with the mattes that they have to keep
//   spill tools      pixels, like the overlay tools
//   noise, shadow,   extreme mattes, each with what was asked of it
//   detail
//   match color      one mean a stroke: of the keyed subject, or of the background where there is no subject
//
// Beside these the controls hold the samples that "match color" left there. ToolRecord is all of it at one
// time.
//
// Like the saved lists each keeps the latest hundred.
#pragma once

#include <array>
#include <vector>

#include "ZoImage/ToolMemory.h"
#include "ZoImage/ToolReport.h"
#include "controls/Controls.h"
#include "tools/MatteSampleAnalysis.h"
#include "tools/Strokes.h"

struct ToolSession {
    std::array<int, 6> saved_counts{};  // of the lists by SampleAction, after the latest stroke
    KnobStorage knobs;                  // then
    Strokes<OverlaySample> overlay;
    Strokes<SpillSample> spill;

    Strokes<PlatedSample> opaque;
    std::vector<PlatedSample> backing;
    std::vector<float> backing_mattes;
    KnobStorage::Color backing_color{};  // the screen colour that they were taken for

    std::vector<MatteSample> mattes;

    std::vector<VeloxaSample::Sample> keyed;
    std::vector<VeloxaSample::Sample> background;
    std::vector<VeloxaSample::Sample> behind;  // the background under each of `keyed`

    std::vector<Zo::Image::ToolReport> reports;  // of the latest tool
};

struct ToolRecord final : Zo::Image::ToolMemory {
    ToolSession session;
    ControlTriple fg_sample{}, bg_sample{};
};
