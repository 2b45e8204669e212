// Turns knobs until every sample says what the user asked, and no further than needed.
//
// Distance: the sum over the dials of how far each was turned, as a share of its range.
//
// The samples are judged by a function that the caller gives, which runs the kernels that render. From the
// present knobs the tuner looks along rays (each dial alone, and the combinations that the caller names) for
// the first point where nothing is amiss; where no ray has one it goes downhill along those rays. What it
// finds is drawn back: dial by dial to the nearest cell that still satisfies, until none can give more.
// So of the result no single knob can stand nearer to where it was; of several such results the nearest wins.
// Where more than one dial is turned, the samples are also taken in one by one, from the newest back, and the
// nearer of the two results stands.
//
// Dials that are held stay, and the others do what they can; where all are held nothing is turned.
//
// Samples that contradict each other: from the newest back, each is taken in if there is an answer to it and
// all taken in before; after kMostRefusals samples without one the older ones are no longer tried. Knobs
// change only where that satisfies a newer sample than before, and the search is repeated from its result
// until it changes nothing: so a second call changes nothing. Same input, same result; no clock, no chance.
#pragma once

#include <cstdlib>
#include <functional>
#include <span>
#include <vector>

#include "tools/Dial.h"

// Writes by how much samples fall short, from number `first` on, oldest first: 0 where one says what was
// asked, else above 0.
using Misses = std::function<void(const KnobStorage& knobs, std::size_t first, std::span<double> misses)>;

// A combination of dials to turn together, each by its share of what is left of its range, from -1 to 1. The
// shares of dials that there are not are left out.
using Ray = std::vector<double>;

struct Tuning {
    KnobStorage knobs;
    std::vector<double> misses;  // that are left
};

Tuning tune(const KnobStorage& present, std::span<const Dial> dials, const KnobFields& held,
            std::span<const Ray> combinations, std::size_t samples, const Misses& misses);

// Halves the way from a number of which `holds` is false to one where it holds, and returns the last of
// these.
template <class Holds>
int halve(int bad, int good, const Holds& holds) {
    while (std::abs(good - bad) > 1) {
        const int middle = bad + (good - bad) / 2;
        (holds(middle) ? good : bad) = middle;
    }
    return good;
}
