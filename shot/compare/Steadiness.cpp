#include "shot/compare/Steadiness.h"

#include <algorithm>
#include <cmath>

namespace veloxa {

namespace {

constexpr float kStill = 0.002f;

}  // namespace

void Steadiness::add_step(const Matte& result, const Matte& truth, const std::vector<char>& counted) {
    double squares = 0.0;
    std::int64_t pixels = 0;
    for (std::size_t i = 0; i < counted.size(); ++i) {
        if (!counted[i] || !counted_before_[i]) continue;
        const double change = static_cast<double>(result.values[i]) - result_.values[i];
        const double right = static_cast<double>(truth.values[i]) - truth_.values[i];
        squares += (change - right) * (change - right);
        ++pixels;
    }
    sum_ += pixels > 0 ? std::sqrt(squares / static_cast<double>(pixels)) : 0.0;
    ++steps_;
}

void Steadiness::add(const Matte& result, const Matte& truth, const std::vector<char>& counted) {
    if (frames_ > 0) {
        add_step(result, truth, counted);
    } else {
        counted_always_ = counted;
        low_ = high_ = truth.values;
        mean_.assign(counted.size(), 0.0);
        spread_ = mean_;
    }
    ++frames_;
    for (std::size_t i = 0; i < counted.size(); ++i) {
        counted_always_[i] = counted_always_[i] && counted[i];
        low_[i] = std::min(low_[i], truth.values[i]);
        high_[i] = std::max(high_[i], truth.values[i]);
        const double off = result.values[i] - mean_[i];
        mean_[i] += off / static_cast<double>(frames_);
        spread_[i] += off * (result.values[i] - mean_[i]);
    }
    result_ = result;
    truth_ = truth;
    counted_before_ = counted;
}

Steadiness::Still Steadiness::still() const {
    Still still;
    for (std::size_t i = 0; i < counted_always_.size(); ++i) {
        if (!counted_always_[i] || high_[i] - low_[i] >= kStill) continue;
        still.deviation += std::sqrt(spread_[i] / static_cast<double>(frames_));
        ++still.pixels;
    }
    if (still.pixels > 0) still.deviation /= static_cast<double>(still.pixels);
    return still;
}

}  // namespace veloxa
