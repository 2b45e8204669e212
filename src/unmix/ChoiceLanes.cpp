#include "lanes/FloatLogExp.h"
#include "unmix/ChoiceKernel.h"

namespace LANES {

namespace {

constexpr float kOddsOfLead = 0.5f;
constexpr float kOddsOfNear = 4.0f;

}  // namespace

void take_better(const Solved& other, const float* mean, const float* away, float number, const ChoiceRows& choice,
                 std::size_t n) {
    const Solved from = other;
    float* __restrict const best = choice.best;
    float* __restrict const alpha = choice.chosen.alpha;
    float* __restrict const cost = choice.chosen.cost;
    float* __restrict const by_noise = choice.chosen.by_noise;
    float* __restrict const variance = choice.chosen.variance;
    float* __restrict const numbers = choice.number;
    for (std::size_t i = 0; i < n; ++i) {
        const float whole = mean[i] + away[i];
        const bool better = whole < best[i];
        best[i] = better ? whole : best[i];
        alpha[i] = better ? from.alpha[i] : alpha[i];
        cost[i] = better ? from.cost[i] + away[i] : cost[i];
        by_noise[i] = better ? from.by_noise[i] : by_noise[i];
        variance[i] = better ? from.variance[i] : variance[i];
        numbers[i] = better ? number : numbers[i];
    }
}

void mix_neutral(const Solved& neutral, const float* lead, const float* near, const ChoiceRows& choice,
                 std::size_t n) {
    const Solved from = neutral;
    float* __restrict const alpha = choice.chosen.alpha;
    float* __restrict const by_noise = choice.chosen.by_noise;
    float* __restrict const variance = choice.chosen.variance;
    float* __restrict const numbers = choice.number;
    for (std::size_t i = 0; i < n; ++i) {
        const float odds = kOddsOfLead * lead[i] + kOddsOfNear * near[i];
        const float p = 1.0f / (1.0f + kernel::float_exp(-odds));
        alpha[i] = p * alpha[i] + (1.0f - p) * from.alpha[i];
        by_noise[i] = p * by_noise[i] + (1.0f - p) * from.by_noise[i];
        variance[i] = p * variance[i] + (1.0f - p) * from.variance[i];
        numbers[i] = p < 0.5f ? 1.0f : numbers[i];
    }
}

}  // namespace LANES
