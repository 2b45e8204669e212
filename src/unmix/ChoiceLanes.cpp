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

// One value of all; the order does not matter to the least or the greatest.
template <class Pick>
[[gnu::always_inline]] inline float fold(const float* v, std::size_t n, const Pick& pick) {
    constexpr std::size_t kTogether = 32;
    float kept[kTogether];
    for (std::size_t j = 0; j < kTogether; ++j) kept[j] = v[0];
    std::size_t i = 0;
    for (; i + kTogether <= n; i += kTogether) {
        for (std::size_t j = 0; j < kTogether; ++j) kept[j] = pick(kept[j], v[i + j]);
    }
    float result = kept[0];
    for (std::size_t j = 1; j < kTogether; ++j) result = pick(result, kept[j]);
    for (; i < n; ++i) result = pick(result, v[i]);
    return result;
}

}  // namespace

void gather_means(const float* sums, const std::int32_t* at, const float* scale, float* __restrict means,
                  std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) means[i] = sums[at[i]] * scale[i];
}

float gather_scaled(const float* table, const std::int32_t* at, float scale, float* __restrict out,
                    std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = table[at[i]] * scale;
    return fold(out, n, [](float a, float b) { return a < b ? a : b; });
}

void scatter_limited(const float* values, float limit, const std::int32_t* at, float* __restrict spread,
                     std::size_t n) {
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const float raised = values[i] > -limit ? values[i] : -limit;
        spread[at[i]] = raised < limit ? raised : limit;
    }
}

float greatest(const float* values, std::size_t n) {
    return fold(values, n, [](float a, float b) { return a > b ? a : b; });
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
