// What a tool of an operator did, for front ends to show.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "ZoImage/Box.h"

namespace Zo::Image {

struct KnobChange {
    std::string knob;
    std::string before, after;  // as scripts hold them
};

struct ToolReport {
    // All that the tool keeps, those of earlier strokes too.
    int samples() const { return satisfied + unsatisfied + unusable; }

    std::string tool;
    Box box{};      // that it looked at
    int frame = 0;  // of a sequence; for front ends to fill in
    std::vector<KnobChange> changes;
    int satisfied = 0;
    int unsatisfied = 0;
    int unusable = 0;               // not finite
    std::vector<std::string> held;  // knobs that the tool could have turned
    std::vector<std::string> notes;
    std::string failure;  // why the tool could not do what it is for; empty when it could
};

// A report as front ends print it: a line of what was sampled and satisfied, an indented one for each knob
// that was turned, and one for each note; `knobs` and `values` are as wide as the columns shall be at least.
std::string text_of(const ToolReport& report, std::size_t knobs = 0, std::size_t values = 0);
// One such line of a knob.
std::string text_of(const KnobChange& change, std::size_t knobs, std::size_t values);

}  // namespace Zo::Image
