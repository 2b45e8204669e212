// Gain and gamma of a view.
#pragma once

#include <algorithm>
#include <cmath>

namespace veloxa::viewer {

class Tone {
  public:
    // A gain below 0 counts as 0, a gamma that is not above 0 as the least there is.
    Tone(float gain, float gamma)
        : gain_(std::max(0.0f, gain)), power_(1.0f / std::max(kLeastGamma, gamma)) {}

    bool changes() const { return gain_ != 1.0f || power_ != 1.0f; }
    float operator()(float v) const {
        const float bright = v * gain_;
        return power_ == 1.0f ? bright : std::copysign(std::pow(std::abs(bright), power_), bright);
    }

  private:
    static constexpr float kLeastGamma = 0.01f;

    float gain_, power_;
};

}  // namespace veloxa::viewer
