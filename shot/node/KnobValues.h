// All values of a panel at one time, to tell what changed since and to go back to.
#pragma once

#include <string>
#include <vector>

#include "ZoImage/KnobPanel.h"

namespace veloxa {

struct KnobChange {
    std::string knob;
    std::string before, after;  // as scripts hold them
};

class KnobValues {
  public:
    explicit KnobValues(const Zo::Image::KnobPanel& panel);

    // What differs from `before`, in panel order; sample lists are left out.
    std::vector<KnobChange> since(const KnobValues& before) const;
    // Gives the knobs these values again, sample lists too.
    void restore() const;

  private:
    struct Value {
        Zo::Image::Knob* knob;
        std::string text;
    };
    std::vector<Value> values_;
};

}  // namespace veloxa
