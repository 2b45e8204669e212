#include "lanes/FloatLogExp.h"
#include "unmix/SolveKernel.h"

namespace LANES {

namespace {

using std::size_t;

[[gnu::always_inline]] inline float at_least(float low, float v) {
    return v > low ? v : low;
}

struct Pixel {
    float x0, x1, x2;  // plate less backing
    float d0, d1, d2;  // subject less backing
    float guess;
};

struct Spread {
    float s00, s01, s02, s11, s12, s22;
};

struct Answer {
    float alpha, cost, by_noise, variance;
};

[[gnu::always_inline]] inline Answer solve(const Spread& n, const Spread& q, const Pixel& p) {
    float a = p.guess;
    float c00 = 0.0f, c01 = 0.0f, c02 = 0.0f, c11 = 0.0f, c12 = 0.0f, c22 = 0.0f;
    float w0 = 0.0f, w1 = 0.0f, w2 = 0.0f, det = 1.0f, inverse = 1.0f, weight = 1.0f;
#pragma GCC unroll 2
    for (int round = 0; round < kSolveRounds; ++round) {
        const float aa = a * a;
        const float s00 = n.s00 + aa * q.s00;
        const float s01 = n.s01 + aa * q.s01;
        const float s02 = n.s02 + aa * q.s02;
        const float s11 = n.s11 + aa * q.s11;
        const float s12 = n.s12 + aa * q.s12;
        const float s22 = n.s22 + aa * q.s22;
        // The inverse is the adjugate over the determinant.
        c00 = s11 * s22 - s12 * s12;
        c01 = s02 * s12 - s01 * s22;
        c02 = s01 * s12 - s02 * s11;
        c11 = s00 * s22 - s02 * s02;
        c12 = s01 * s02 - s00 * s12;
        c22 = s00 * s11 - s01 * s01;
        det = at_least(1e-20f, s00 * c00 + s01 * c01 + s02 * c02);
        inverse = 1.0f / det;
        w0 = (c00 * p.d0 + c01 * p.d1 + c02 * p.d2) * inverse;
        w1 = (c01 * p.d0 + c11 * p.d1 + c12 * p.d2) * inverse;
        w2 = (c02 * p.d0 + c12 * p.d1 + c22 * p.d2) * inverse;
        weight = at_least(1e-6f, w0 * p.d0 + w1 * p.d1 + w2 * p.d2);
        const float v = (w0 * p.x0 + w1 * p.x1 + w2 * p.x2) / weight;
        const float low = at_least(0.0f, v);
        a = low > 1.0f ? 1.0f : low;
    }
    const float r0 = p.x0 - a * p.d0;
    const float r1 = p.x1 - a * p.d1;
    const float r2 = p.x2 - a * p.d2;
    const float chi = (c00 * r0 * r0 + c11 * r1 * r1 + c22 * r2 * r2 +
                       2.0f * (c01 * r0 * r1 + c02 * r0 * r2 + c12 * r1 * r2)) *
                      inverse;
    const float by_noise = (n.s00 * w0 * w0 + n.s11 * w1 * w1 + n.s22 * w2 * w2 +
                            2.0f * (n.s01 * w0 * w1 + n.s02 * w0 * w2 + n.s12 * w1 * w2)) /
                           (weight * weight);
    return {a, chi + kernel::float_log(det), by_noise, 1.0f / weight};
}

[[gnu::always_inline]] inline Spread spread(const std::array<float, 6>& v) {
    return {v[0], v[1], v[2], v[3], v[4], v[5]};
}

}  // namespace

void solve_common(const UnmixNoise& noise, const UnmixPixels& pixels, const CommonColour& colour,
                  const Solved& out, size_t n) {
    const Spread spread_n = spread(noise.covariance);
    const Spread spread_q = spread(colour.covariance);
    const auto [x0, x1, x2] = pixels.beyond;
    const auto [b0, b1, b2] = pixels.backing;
    const auto [m0, m1, m2] = colour.mean;
    const float* const guess = pixels.guess;
    float* const alpha = out.alpha;
    float* const cost = out.cost;
    float* const by_noise = out.by_noise;
    float* const variance = out.variance;
    const float share = colour.share - 1.0f;
#pragma GCC ivdep
    for (size_t i = 0; i < n; ++i) {
        const Pixel p{x0[i],   x1[i], x2[i], m0 + share * b0[i], m1 + share * b1[i], m2 + share * b2[i],
                      guess[i]};
        const Answer a = solve(spread_n, spread_q, p);
        alpha[i] = a.alpha;
        cost[i] = a.cost;
        by_noise[i] = a.by_noise;
        variance[i] = a.variance;
    }
}

void solve_own(const UnmixNoise& noise, const UnmixPixels& pixels, const OwnColours& colours,
               const Solved& out, size_t n) {
    const Spread spread_n = spread(noise.covariance);
    const auto [x0, x1, x2] = pixels.beyond;
    const auto [b0, b1, b2] = pixels.backing;
    const auto [m0, m1, m2] = colours.mean;
    const auto [q0, q1, q2, q3, q4, q5] = colours.covariance;
    const float* const guess = pixels.guess;
    float* const alpha = out.alpha;
    float* const cost = out.cost;
    float* const by_noise = out.by_noise;
    float* const variance = out.variance;
#pragma GCC ivdep
    for (size_t i = 0; i < n; ++i) {
        const Spread spread_q{q0[i], q1[i], q2[i], q3[i], q4[i], q5[i]};
        const Pixel p{x0[i], x1[i], x2[i], m0[i] - b0[i], m1[i] - b1[i], m2[i] - b2[i], guess[i]};
        const Answer a = solve(spread_n, spread_q, p);
        alpha[i] = a.alpha;
        cost[i] = a.cost;
        by_noise[i] = a.by_noise;
        variance[i] = a.variance;
    }
}

}  // namespace LANES
