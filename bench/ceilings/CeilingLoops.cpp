// Compiled once a form; the multiply-adds are fused where the processor can.
#include "ceilings/CeilingLoops.h"

#include <cstddef>

#if LANE_BITS == 0
#define CEILING_BITS 128
#else
#define CEILING_BITS LANE_BITS
#endif

namespace LANES {

namespace {

template <class Number>
struct VectorOf {
    using Type [[gnu::vector_size(CEILING_BITS / 8)]] = Number;
};

// Enough of them that none waits for its own last result.
constexpr std::size_t kChains = 12;

template <class Number, class Step>
[[gnu::always_inline]] inline double run(std::size_t rounds, double* seed, Step step) {
    using Vector = typename VectorOf<Number>::Type;
    const auto given = static_cast<Number>(*seed);
    Vector chains[kChains];
    for (std::size_t k = 0; k < kChains; ++k) {
        chains[k] = Vector{} + given * (static_cast<Number>(1) + static_cast<Number>(k) / 16);
    }
    const Vector other = Vector{} + given;
    for (std::size_t i = 0; i < rounds; ++i) {
#pragma GCC unroll 12
        for (std::size_t k = 0; k < kChains; ++k) chains[k] = step(chains[k], other);
    }
    Vector sum{};
    for (const Vector& chain : chains) sum += chain;
    *seed = *seed + 0.0 * static_cast<double>(sum[0]);
    return static_cast<double>(rounds * kChains * (sizeof(Vector) / sizeof(Number)));
}

}  // namespace

// The quotients alternate between two numbers.
double divide_floats(std::size_t rounds, double* seed) {
    return run<float>(rounds, seed, [](auto v, auto c) { return c / v; });
}
double divide_doubles(std::size_t rounds, double* seed) {
    return run<double>(rounds, seed, [](auto v, auto c) { return c / v; });
}
// They approach c / (1 - c), so c is to be below 1.
double multiply_add_floats(std::size_t rounds, double* seed) {
    return run<float>(rounds, seed, [](auto v, auto c) { return v * c + c; });
}
double multiply_add_doubles(std::size_t rounds, double* seed) {
    return run<double>(rounds, seed, [](auto v, auto c) { return v * c + c; });
}
// From double to float and back: two conversions.
double convert(std::size_t rounds, double* seed) {
    using Doubles = VectorOf<double>::Type;
    using Halves [[gnu::vector_size(CEILING_BITS / 16)]] = float;
    return 2.0 * run<double>(rounds, seed, [](auto v, auto) {
               const auto narrow = __builtin_convertvector(v, Halves);
               return __builtin_convertvector(narrow, Doubles);
           });
}

double negate_plane(const float* from, float* to, std::size_t n) {
    float* out = to;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) out[i] = -from[i];
    return 2.0 * sizeof(float) * static_cast<double>(n);
}

}  // namespace LANES
