// Where in the picture the samples of the node's lists were taken, as one text that is saved with the
// project.
//
// A mark names its sample by its numbers, for lists change on their own: by resets, loaded settings, undone
// strokes, and by dropping their oldest. A mark whose sample is not in its list is not shown, and comes back
// with it.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "abi/OfxCore.h"

namespace veloxa::ofx {

struct SampleMark {
    std::string tool;                   // the button's parameter
    std::string list;                   // the list's
    std::array<std::string, 4> sample;  // as the list has it
    OfxTime time = 0.0;
    std::array<double, 2> place{};   // x and y, canonical coordinates
    std::array<double, 3> colour{};  // of the plate there

    friend bool operator==(const SampleMark&, const SampleMark&) = default;
};

// What does not read as a mark is left out.
std::vector<SampleMark> read_marks(const std::string& text);
// The newest few hundred, which are as many as the lists hold.
std::string write_marks(const std::vector<SampleMark>& marks);

// Lists of samples as their knobs write them: four numbers a sample, newest last.
using SampleWords = std::vector<std::array<std::string, 4>>;
SampleWords read_samples(const std::string& text);
std::string write_samples(const SampleWords& samples);

}  // namespace veloxa::ofx
