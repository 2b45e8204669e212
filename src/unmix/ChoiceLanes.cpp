#include "lanes/FloatLogExp.h"
#include "unmix/ChoiceKernel.h"

namespace LANES {

namespace {

constexpr float kOddsOfLead = 0.5f;
constexpr float kOddsOfNear = 4.0f;

// Both values are at hand, so that no form has to branch.
[[gnu::always_inline]] inline void take(bool better, float other, float& present) {
    const float old = present;
    present = better ? other : old;
}

}  // namespace

void gather_means(const float* sums, const std::int32_t* at, const float* scale, float* __restrict means,
                  std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) means[i] = sums[at[i]] * scale[i];
}

void take_better(const Solved& other, const float* mean, const float* away, float number,
                 const ChoiceRows& choice, std::size_t n) {
    const float* const from_alpha = other.alpha;
    const float* const from_cost = other.cost;
    const float* const from_noise = other.by_noise;
    const float* const from_variance = other.variance;
    float* const best = choice.best;
    float* const alpha = choice.chosen.alpha;
    float* const cost = choice.chosen.cost;
    float* const by_noise = choice.chosen.by_noise;
    float* const variance = choice.chosen.variance;
    float* const numbers = choice.number;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const float whole = mean[i] + away[i];
        const bool better = whole < best[i];
        take(better, whole, best[i]);
        take(better, from_alpha[i], alpha[i]);
        take(better, from_cost[i] + away[i], cost[i]);
        take(better, from_noise[i], by_noise[i]);
        take(better, from_variance[i], variance[i]);
        take(better, number, numbers[i]);
    }
}

void mix_neutral(const Solved& neutral, const float* lead, const float* near, const ChoiceRows& choice,
                 std::size_t n) {
    const float* const from_alpha = neutral.alpha;
    const float* const from_noise = neutral.by_noise;
    const float* const from_variance = neutral.variance;
    float* const alpha = choice.chosen.alpha;
    float* const by_noise = choice.chosen.by_noise;
    float* const variance = choice.chosen.variance;
    float* const numbers = choice.number;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const float odds = kOddsOfLead * lead[i] + kOddsOfNear * near[i];
        const float p = 1.0f / (1.0f + kernel::float_exp(-odds));
        alpha[i] = p * alpha[i] + (1.0f - p) * from_alpha[i];
        by_noise[i] = p * by_noise[i] + (1.0f - p) * from_noise[i];
        variance[i] = p * variance[i] + (1.0f - p) * from_variance[i];
        numbers[i] = p < 0.5f ? 1.0f : numbers[i];
    }
}

}  // namespace LANES
