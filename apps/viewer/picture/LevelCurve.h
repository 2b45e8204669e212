// What value of a picture shows as what level of the screen, where one follows from the other alone.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace veloxa::viewer {

// The screen's level of a value of 0 to 1, to the nearest; 0 for NaN.
inline std::uint8_t level_of(float v) {
    const float scaled = v * 255.0f + 0.5f;
    if (!(scaled > 0.0f)) return 0;
    return static_cast<std::uint8_t>(scaled < 255.0f ? scaled : 255.0f);
}

// A function from values to levels that never falls.
struct LevelCurve {
    // The least value that shows as this level or a brighter one; NaN where none does, the first is
    // -infinity.
    std::array<float, 257> least{};

    std::uint8_t level(float v) const;
};

// Turns values into levels, all at once.
using ToLevels = std::function<void(std::span<const float>, std::span<std::uint8_t>)>;

// The curve of that function; none where it falls anywhere by more than a level. Infinity is as the largest
// numbers.
std::optional<LevelCurve> measure(const ToLevels& to_levels);

// The curve that takes value * gain to the power of 1 / gamma, the sign kept, through `curve`. The gain is
// not negative, gamma is above 0.
LevelCurve after(float gain, float gamma, const LevelCurve& curve);

// The same by a table, for many values. Exact for every one.
class LevelTable {
  public:
    using Channels = std::array<const LevelTable*, 3>;
    using Planes = std::array<const float*, 3>;

    explicit LevelTable(const LevelCurve& curve);

    // One pixel of the screen (0xffRRGGBB) for each value, or for each three.
    void grey(const float* values, std::size_t count, std::uint32_t* out) const;
    static void colour(const Channels& tables, const Planes& planes, std::size_t count, std::uint32_t* out);

  private:
    // kSteps is how many levels values that have their upper half in common lie apart at most; 0 for any.
    template <int kSteps>
    std::uint32_t level(float v) const;
    template <int kSteps>
    static void write(const Channels& tables, const Planes& planes, std::size_t count, std::uint32_t* out);

    std::vector<std::uint8_t> base_;  // by a float's upper half: the level of the least value that has it
    std::array<float, 256> next_{};   // by level: the least value of the level above it
    int steps_ = 1;
};

}  // namespace veloxa::viewer
