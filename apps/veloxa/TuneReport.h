// What tuning changed, as a table or as JSON.
#pragma once

#include <string>
#include <vector>

#include "ZoImage/ToolReport.h"

namespace veloxa {

struct TuneReport {
    std::vector<Zo::Image::ToolReport> strokes;
    std::vector<Zo::Image::KnobChange> changes;  // all in all, the screen colour's too
};

std::string table_of(const TuneReport& report);
// {"strokes": [{"tool", "frame", "box", "knobs": [{"name", "before", "after"}], "satisfied", "unsatisfied",
// "unusable", "notes"}], "knobs": [...]}; values are numbers, lists of numbers, true, false or menu items.
std::string json_of(const TuneReport& report);

}  // namespace veloxa
