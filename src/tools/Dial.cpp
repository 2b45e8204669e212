#include "tools/Dial.h"

#include <algorithm>
#include <cmath>

#include "stages/WorkingScale.h"

namespace {

constexpr double kMostCells = 4096.0;

}  // namespace

Dial Dial::number(float KnobStorage::*field, double low, double high) {
    Dial dial;
    dial.field = field;
    dial.low = low;
    dial.high = high;
    dial.range = high - low;
    return dial;
}

Dial Dial::level(float KnobStorage::*field, double low, double high) {
    Dial dial = number(field, low, high);
    dial.scale = Scale::kEncoded;
    dial.range = 1.0;
    return dial;
}

Dial Dial::component(KnobStorage::Color KnobStorage::*field, int component, double low, double high,
                     double origin, double step) {
    Dial dial;
    dial.color = field;
    dial.index = static_cast<std::size_t>(component);
    dial.low = low;
    dial.high = high;
    dial.range = high - low;
    dial.origin = origin;
    dial.step = step;
    return dial;
}

Dial Dial::level_component(KnobStorage::Color KnobStorage::*field, int component, double low, double high) {
    Dial dial = Dial::component(field, component, low, high, 0.0, 1.0);
    dial.scale = Scale::kEncoded;
    return dial;
}

double Dial::cell(double value) const {
    if (scale == Scale::kEncoded)
        return std::trunc(static_cast<double>(encode(static_cast<float>(value), 0.5f)));
    return std::trunc((value - origin) / step);
}

// Colours and levels are entered in the middle of a cell, where rounding cannot lead out of it again; whole
// percentages are exact.
double Dial::entry(double cell) const {
    const double inner = color == nullptr && scale == Scale::kPlain ? 0.0 : cell < 0.0 ? -0.5 : 0.5;
    if (scale == Scale::kEncoded) return static_cast<double>(decode(static_cast<float>(cell + inner), 0.5f));
    return origin + (cell + inner) * step;
}

int Dial::lowest(float present) const {
    const double v = static_cast<double>(present);
    if (held || !std::isfinite(v) || v <= low) return 0;
    return static_cast<int>(std::max(-kMostCells, std::min(0.0, cell(low) - cell(v))));
}

int Dial::highest(float present) const {
    const double v = static_cast<double>(present);
    if (held || !std::isfinite(v) || v >= high) return 0;
    return static_cast<int>(std::min(kMostCells, std::max(0.0, cell(high) - cell(v))));
}

float Dial::value(float present, int cells) const {
    if (cells == 0) return present;
    const double v = entry(cell(static_cast<double>(present)) + cells);
    return static_cast<float>(std::clamp(v, std::min(low, static_cast<double>(present)),
                                         std::max(high, static_cast<double>(present))));
}

void hold(std::span<Dial> dials, const KnobFields& held) {
    for (Dial& dial : dials) dial.held = held.has(dial.place());
}
