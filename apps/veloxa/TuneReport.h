// What tuning changed, as a table or as JSON.
#pragma once

#include <string>
#include <vector>

#include "Stroke.h"

namespace veloxa {

// The panel's values as scripts hold them, one a knob; sample lists are left out.
class KnobValues {
  public:
    explicit KnobValues(const Zo::Image::KnobPanel& panel);
    // What differs from `before`, in panel order.
    std::vector<KnobChange> since(const KnobValues& before) const;

  private:
    struct Value {
        std::string knob, text;
    };
    std::vector<Value> values_;
};

struct TuneReport {
    std::vector<ToolReport> strokes;
    std::vector<KnobChange> changes;  // all in all, the screen colour's too
};

std::string table_of(const TuneReport& report);
// {"strokes": [{"tool", "frame", "box", "knobs": [{"name", "before", "after"}], "satisfied", "unsatisfied",
// "unusable", "notes"}], "knobs": [...]}; values are numbers, lists of numbers, true, false or menu items.
std::string json_of(const TuneReport& report);

}  // namespace veloxa
