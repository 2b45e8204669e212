// What a stroke costs outside its areas: pixels on a coarse grid over the frame, judged by their own colours
// as the tools judge their samples. Shrinking, orphans and blurs, which look at places, have no part in it.
#pragma once

#include <string>
#include <vector>

#include "tools/AddMatteAnalysis.h"
#include "tools/StrokeAreas.h"
#include "tools/ToolNode.h"

// Shares of what there was outside the areas.
struct Losses {
    double backing = 0.0;  // of what was clear: no longer clear
    double subject = 0.0;  // of what was solid: clear now
    double area = 0.0;     // of the screen area: out of it

    // A line each for those that are more than a small share.
    std::vector<std::string> notes() const;
};

// Pixels of the foreground, and of the clean plate if there is one, outside the areas. What the garbage and
// the holdout matte decide is left out. Throws GivenUp.
std::vector<PlatedSample> pixels_elsewhere(const ToolNode& node, const StrokeAreas& areas);

// Of the colour difference with its clean-up, from one setting of the knobs to another.
Losses losses(const Setting& before, const Setting& after, std::span<const PlatedSample> pixels);
