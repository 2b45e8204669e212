// A knob, or one component of a colour knob, that an analysis may turn.
//
// Kernels see knobs as whole controls, so a dial stands in cells: one for each value of its control. Its
// present value is kept to the bit until it leaves its cell; any other cell is entered at one fixed value.
#pragma once

#include <cstddef>
#include <span>

#include "panel/KnobFields.h"
#include "panel/KnobStorage.h"

struct Dial {
    enum class Scale {
        kPlain,    // control = trunc((value - origin) / step)
        kEncoded,  // control = trunc(encode(value)): a level with the knee of the working scale
    };

    static Dial number(float KnobStorage::*field, double low, double high);
    static Dial level(float KnobStorage::*field, double low, double high);
    static Dial component(KnobStorage::Color KnobStorage::*field, int component, double low, double high,
                          double origin, double step);
    static Dial level_component(KnobStorage::Color KnobStorage::*field, int component, double low,
                                double high);

    float& in(KnobStorage& knobs) const { return color != nullptr ? (knobs.*color)[index] : knobs.*field; }
    float in(const KnobStorage& knobs) const {
        return color != nullptr ? (knobs.*color)[index] : knobs.*field;
    }

    std::size_t place() const {
        return color != nullptr ? KnobFields::place(color) : KnobFields::place(field);
    }

    // Cells that it may go down (negative) and up from the present value; none from one that is not finite,
    // and none when the dial is held.
    int lowest(float present) const;
    int highest(float present) const;
    // The value `cells` away from the present one.
    float value(float present, int cells) const;

    float KnobStorage::*field = nullptr;
    KnobStorage::Color KnobStorage::*color = nullptr;
    std::size_t index = 0;
    Scale scale = Scale::kPlain;
    double low = 0.0;  // how far it is turned; a present value outside is a bound of its own
    double high = 0.0;
    double range = 1.0;  // what a distance is measured by
    double origin = 0.0;
    double step = 1.0;
    bool held = false;

  private:
    double cell(double value) const;
    double entry(double cell) const;
};

// Holds those whose fields are in the set.
void hold(std::span<Dial> dials, const KnobFields& held);
