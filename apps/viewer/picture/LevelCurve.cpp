#include "picture/LevelCurve.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "picture/Tone.h"

namespace veloxa::viewer {

namespace {

constexpr int kLevels = 256;
constexpr std::uint32_t kOpaque = 0xff000000U;
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNever = std::numeric_limits<float>::quiet_NaN();
constexpr std::uint32_t kSign = 0x80000000U;
constexpr std::int64_t kPlusInfinity = 0x7f800000;
constexpr std::int64_t kMinusInfinity = -1 - kPlusInfinity;

// Floats in order, by whole numbers: 0 is 0.0, -1 is -0.0.
float nth(std::int64_t n) {
    return std::bit_cast<float>(n >= 0 ? static_cast<std::uint32_t>(n)
                                       : kSign | static_cast<std::uint32_t>(-1 - n));
}

using Thresholds = std::array<float, kLevels - 1>;

// For each level but the first the least float from which on `reaches` is true, all in one go.
// `reaches(values, flags)` says it of one value for each.
template <class Reaches>
LevelCurve least_values(const Reaches& reaches) {
    std::array<std::int64_t, kLevels - 1> below{};  // does not reach it, or nothing is known of it
    std::array<std::int64_t, kLevels - 1> from{};   // reaches it
    below.fill(kMinusInfinity - 1);
    from.fill(kPlusInfinity + 1);
    Thresholds middle;
    std::array<bool, kLevels - 1> flags{};
    for (bool open = true; open;) {
        open = false;
        for (std::size_t n = 0; n < middle.size(); ++n) {
            const std::int64_t half = below[n] + (from[n] - below[n]) / 2;
            middle[n] = nth(std::clamp(half, kMinusInfinity, kPlusInfinity));
        }
        reaches(middle, flags);
        for (std::size_t n = 0; n < middle.size(); ++n) {
            if (from[n] - below[n] <= 1) continue;
            (flags[n] ? from[n] : below[n]) = below[n] + (from[n] - below[n]) / 2;
            open = open || from[n] - below[n] > 1;
        }
    }
    LevelCurve curve;
    curve.least.front() = -kInfinity;
    curve.least.back() = kNever;
    for (std::size_t n = 0; n < from.size(); ++n) {
        curve.least[n + 1] = from[n] > kPlusInfinity ? kNever : nth(from[n]);
    }
    return curve;
}

// Every finite value whose lower half is 0, in order.
std::vector<float> coarse_values() {
    std::vector<float> values;
    for (std::uint32_t upper = 0xff7fU; upper > 0x8000U; --upper) {
        values.push_back(std::bit_cast<float>(upper << 16U));
    }
    for (std::uint32_t upper = 0; upper < 0x7f80U; ++upper) {
        values.push_back(std::bit_cast<float>(upper << 16U));
    }
    return values;
}

}  // namespace

std::uint8_t LevelCurve::level(float v) const {
    const auto beyond =
        std::partition_point(least.begin(), least.end(), [v](float from) { return v >= from; });
    return static_cast<std::uint8_t>(std::max<std::ptrdiff_t>(beyond - least.begin() - 1, 0));
}

std::optional<LevelCurve> measure(const ToLevels& to_levels) {
    std::array<std::uint8_t, kLevels - 1> found{};
    const LevelCurve curve =
        least_values([&](const Thresholds& values, std::array<bool, kLevels - 1>& flags) {
            to_levels(values, found);
            for (std::size_t n = 0; n < found.size(); ++n) flags[n] = found[n] > n;
        });
    const std::vector<float> values = coarse_values();
    std::vector<std::uint8_t> levels(values.size());
    to_levels(values, levels);
    for (std::size_t n = 0; n < values.size(); ++n) {
        if (std::abs(static_cast<int>(curve.level(values[n])) - levels[n]) > 1) return std::nullopt;
    }
    return curve;
}

LevelCurve after(float gain, float gamma, const LevelCurve& curve) {
    if (gain == 1.0f && gamma == 1.0f) return curve;
    const Tone tone(gain, gamma);
    return least_values([&](const Thresholds& values, std::array<bool, kLevels - 1>& flags) {
        for (std::size_t n = 0; n < values.size(); ++n) flags[n] = tone(values[n]) >= curve.least[n + 1];
    });
}

LevelTable::LevelTable(const LevelCurve& curve) : base_(1U << 16U) {
    std::copy_n(curve.least.begin() + 1, next_.size(), next_.begin());
    const auto fill = [&](std::uint32_t upper, float from, float to, int& level) {
        const auto reached = [&](float v) {
            while (level < kLevels - 1 && v >= next_[static_cast<std::size_t>(level)]) ++level;
            return level;
        };
        const int base = reached(from);
        base_[upper] = static_cast<std::uint8_t>(base);
        steps_ = std::max(steps_, reached(to) - base);
    };
    const auto ends = [](std::uint32_t upper, std::uint32_t lower) {
        return std::bit_cast<float>(upper << 16U | lower);
    };
    int level = 0;
    fill(0xff80U, -kInfinity, -kInfinity, level);
    for (std::uint32_t upper = 0xff7fU; upper >= 0x8000U; --upper) {
        fill(upper, ends(upper, 0xffffU), ends(upper, 0), level);
    }
    for (std::uint32_t upper = 0; upper < 0x7f80U; ++upper) {
        fill(upper, ends(upper, 0), ends(upper, 0xffffU), level);
    }
    fill(0x7f80U, kInfinity, kInfinity, level);
}

template <int kSteps>
std::uint32_t LevelTable::level(float v) const {
    std::uint32_t level = base_[std::bit_cast<std::uint32_t>(v) >> 16U];
    if constexpr (kSteps > 0) {
        for (int n = 0; n < kSteps; ++n) level += v >= next_[level] ? 1U : 0U;
    } else {
        while (level < kLevels - 1 && v >= next_[level]) ++level;
    }
    return std::isnan(v) ? 0 : level;
}

template <int kSteps>
void LevelTable::write(const Channels& tables, const Planes& planes, std::size_t count, std::uint32_t* out) {
    const LevelTable &red = *tables[0], &green = *tables[1], &blue = *tables[2];
    for (std::size_t x = 0; x < count; ++x) {
        out[x] = kOpaque | red.level<kSteps>(planes[0][x]) << 16U | green.level<kSteps>(planes[1][x]) << 8U |
                 blue.level<kSteps>(planes[2][x]);
    }
}

void LevelTable::colour(const Channels& tables, const Planes& planes, std::size_t count, std::uint32_t* out) {
    const int steps = std::max({tables[0]->steps_, tables[1]->steps_, tables[2]->steps_});
    if (steps == 1) {
        write<1>(tables, planes, count, out);
    } else if (steps == 2) {
        write<2>(tables, planes, count, out);
    } else {
        write<0>(tables, planes, count, out);
    }
}

void LevelTable::grey(const float* values, std::size_t count, std::uint32_t* out) const {
    for (std::size_t x = 0; x < count; ++x) {
        const std::uint32_t level = steps_ == 1 ? this->level<1>(values[x]) : this->level<0>(values[x]);
        out[x] = kOpaque | level << 16U | level << 8U | level;
    }
}

}  // namespace veloxa::viewer
