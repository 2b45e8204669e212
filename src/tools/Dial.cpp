#include "tools/Dial.h"

#include <algorithm>
#include <cmath>

#include "stages/WorkingScale.h"

namespace {

constexpr double kMostCells = 4096.0;
constexpr float kPivot = 0.5f;

}  // namespace

Dial::Dial(float KnobStorage::*knob) : field(knob), row(knob_row(knob)), target_(knob_table()[row].target) {
    const KnobReach& reach = knob_table()[row].reach;
    low = reach.lowest;
    high = reach.highest;
    if (!level()) range = high - low;
}

Dial::Dial(KnobStorage::Color KnobStorage::*knob, int component)
    : color(knob),
      index(static_cast<std::size_t>(component)),
      row(knob_row(knob)),
      target_(knob_table()[row].target) {}

bool Dial::level() const {
    return target_.scale == KnobTarget::Scale::kLevel;
}

// Where control is 0, and how far on it is 1.
double Dial::origin() const {
    return 0.0 - static_cast<double>(target_.offset) / static_cast<double>(target_.factor);
}

double Dial::step() const {
    const double most = target_.scale == KnobTarget::Scale::kNumber ? 1.0 : 255.0;
    return 1.0 / (most * static_cast<double>(target_.factor));
}

double Dial::cell(double value) const {
    if (level()) return std::trunc(static_cast<double>(encode(static_cast<float>(value), kPivot)));
    return std::trunc((value - origin()) / step());
}

// Colours and levels are entered in the middle of a cell, where rounding cannot lead out of it again; whole
// percentages are exact.
double Dial::entry(double cell) const {
    const double inner = color == nullptr && !level() ? 0.0 : cell < 0.0 ? -0.5 : 0.5;
    if (level()) return static_cast<double>(decode(static_cast<float>(cell + inner), kPivot));
    return origin() + (cell + inner) * step();
}

int Dial::lowest(float present) const {
    const double v = static_cast<double>(present);
    if (!std::isfinite(v) || v <= low) return 0;
    return static_cast<int>(std::max(-kMostCells, std::min(0.0, cell(low) - cell(v))));
}

int Dial::highest(float present) const {
    const double v = static_cast<double>(present);
    if (!std::isfinite(v) || v >= high) return 0;
    return static_cast<int>(std::min(kMostCells, std::max(0.0, cell(high) - cell(v))));
}

float Dial::value(float present, int cells) const {
    if (cells == 0) return present;
    const double v = entry(cell(static_cast<double>(present)) + cells);
    return static_cast<float>(std::clamp(v, std::min(low, static_cast<double>(present)),
                                         std::max(high, static_cast<double>(present))));
}
