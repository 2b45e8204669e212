// A knob, or one component of a colour knob, that an analysis may turn.
//
// Kernels see knobs as whole controls, so a dial stands in cells: one for each value of its control. Its
// present value is kept to the bit until it leaves its cell; any other cell is entered at one fixed value.
#pragma once

#include <cstddef>

#include "panel/KnobTable.h"

struct Dial {
    // As far as its row says; components of colours from 0 to 1.
    Dial(float KnobStorage::*field);
    Dial(KnobStorage::Color KnobStorage::*field, int component);

    float& in(KnobStorage& knobs) const { return color != nullptr ? (knobs.*color)[index] : knobs.*field; }
    float in(const KnobStorage& knobs) const {
        return color != nullptr ? (knobs.*color)[index] : knobs.*field;
    }

    // Cells that it may go down (negative) and up from the present value; none from one that is not finite.
    int lowest(float present) const;
    int highest(float present) const;
    // The value `cells` away from the present one.
    float value(float present, int cells) const;

    float KnobStorage::*field = nullptr;
    KnobStorage::Color KnobStorage::*color = nullptr;
    std::size_t index = 0;
    std::size_t row = 0;
    double low = 0.0;  // how far it is turned; a present value outside is a bound of its own
    double high = 1.0;
    double range = 1.0;  // what a distance is measured by

  private:
    bool level() const;
    double origin() const;
    double step() const;
    double cell(double value) const;
    double entry(double cell) const;

    KnobTarget target_;
};
