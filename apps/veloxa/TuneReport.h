// What tuning changed, as a table or as JSON.
#pragma once

#include <string>
#include <vector>

#include "shot/node/KnobValues.h"
#include "shot/setup/Stroke.h"

namespace veloxa {

struct TuneReport {
    std::vector<ToolReport> strokes;
    std::vector<KnobChange> changes;  // all in all, the screen colour's too
};

std::string table_of(const TuneReport& report);
// {"strokes": [{"tool", "frame", "box", "knobs": [{"name", "before", "after"}], "satisfied", "unsatisfied",
// "unusable", "notes"}], "knobs": [...]}; values are numbers, lists of numbers, true, false or menu items.
std::string json_of(const TuneReport& report);

}  // namespace veloxa
