#include "plates/Focus.h"

namespace plate {

Focus::Focus(float radius, int width)
    : reach_(static_cast<int>(std::ceil(radius))),
      held_(static_cast<std::size_t>(2 * reach_ + 1)),
      blurred_(static_cast<std::size_t>(width)) {
    for (Held& held : held_) held.row.resize(blurred_.size());
    double sum = 0.0;
    for (int dy = -reach_; dy <= reach_; ++dy) {
        for (int dx = -reach_; dx <= reach_; ++dx) {
            const Vec2 off{static_cast<float>(dx), static_cast<float>(dy)};
            const double weight = saturate(radius + 0.5f - length(off));
            if (weight > 0.0) taps_.push_back({dx, dy, weight});
            sum += weight;
        }
    }
    for (Tap& tap : taps_) tap.weight /= sum;
}

Focus::Held& Focus::held_at(int y) {
    const int n = static_cast<int>(held_.size());
    return held_[static_cast<std::size_t>((y % n + n) % n)];
}

// In double, so that alpha stays 1 wherever it is 1 all around.
void Focus::blur(int y) {
    const int last = static_cast<int>(blurred_.size()) - 1;
    for (int x = 0; x <= last; ++x) {
        double red = 0.0, green = 0.0, blue = 0.0, spill = 0.0, alpha = 0.0;
        std::array<double, static_cast<std::size_t>(Part::kCount)> shares{};
        for (const Tap& tap : taps_) {
            const Stack& s =
                held_at(y + tap.dy).row[static_cast<std::size_t>(std::clamp(x + tap.dx, 0, last))];
            if (s.alpha <= 0.0f) continue;
            red += tap.weight * s.colour.x;
            green += tap.weight * s.colour.y;
            blue += tap.weight * s.colour.z;
            spill += tap.weight * s.spill;
            alpha += tap.weight * s.alpha;
            for (std::size_t i = 0; i < shares.size(); ++i) shares[i] += tap.weight * s.shares[i];
        }
        Stack& out = blurred_[static_cast<std::size_t>(x)];
        out.colour = {static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue)};
        out.spill = static_cast<float>(spill);
        out.alpha = std::min(static_cast<float>(alpha), 1.0f);
        std::ranges::transform(shares, out.shares.begin(), [](double v) { return static_cast<float>(v); });
    }
}

}  // namespace plate
