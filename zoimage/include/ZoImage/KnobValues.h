// The values of knobs at one time, to tell what changed since and to go back to.
//
// The knobs must outlive it. Validation thread only.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "ZoImage/KnobPanel.h"
#include "ZoImage/ToolReport.h"

namespace Zo::Image {

class KnobValues {
  public:
    explicit KnobValues(std::span<Knob* const> knobs);
    // Of all knobs that take a value, in panel order; links are left out.
    explicit KnobValues(const KnobPanel& panel);

    // The knobs whose value is another now, in order.
    std::vector<Knob*> changed() const;
    // What became of them; those that read and write themselves are left out.
    std::vector<KnobChange> changes() const;
    // Gives the knobs these values again, and tells their operator.
    void restore() const;

  private:
    struct Value {
        Knob* knob;
        std::string text;
    };
    std::vector<Value> values_;
};

}  // namespace Zo::Image
