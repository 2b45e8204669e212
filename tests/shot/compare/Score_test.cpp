#include "shot/compare/Score.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

using namespace veloxa;

namespace {

Matte row(std::vector<float> values) {
    const int width = static_cast<int>(values.size());
    return {width, 1, std::move(values)};
}

float sum(const std::vector<float>& errors) {
    return std::accumulate(errors.begin(), errors.end(), 0.0f);
}

}  // namespace

TEST(Score, ConnectivityCountsWhatLeavesTheSolidPart) {
    const struct {
        std::vector<float> result, truth;
        float error;
    } cases[] = {
        {{1, 1, 0.5f, 0}, {1, 1, 0.5f, 0}, 0.0f},
        {{1, 1, 0.5f, 0}, {1, 1, 0.3f, 0}, 0.2f},        // connected up to 0.3, 0.2 above it is loose
        {{1, 1, 0.42f, 0}, {1, 1, 0.3f, 0}, 0.0f},       // 0.12 is not
        {{1, 1, 0, 0.6f}, {1, 1, 0, 0}, 0.6f},           // an island
        {{1, 1, 0, 0.6f}, {1, 1, 0, 0.6f}, 0.0f},        // which both have
        {{1, 1, 0, 0.8f}, {1, 1, 0.8f, 0.8f}, 0.8f},     // a gap; behind it both are equally far
        {{0, 0.5f, 0, 1, 1}, {0, 0.3f, 0, 1, 1}, 0.2f},  // the largest part lies at the right
        {{0.6f, 0.6f, 0.6f}, {0, 0, 0}, 1.8f},           // nothing in common
    };
    for (const auto& c : cases) {
        EXPECT_NEAR(sum(connectivity_errors(row(c.result), row(c.truth))), c.error, 1e-6)
            << testing::PrintToString(c.result);
    }
    // The second row joins what the first parts; a corner does not.
    const Matte truth{3, 2, {1, 0, 1, 1, 1, 1}}, corner{3, 2, {1, 0, 0.9f, 1, 1, 0}};
    EXPECT_NEAR(sum(connectivity_errors({3, 2, {1, 0, 0.7f, 1, 1, 1}}, truth)), 0.3f, 1e-6);
    EXPECT_NEAR(sum(connectivity_errors(corner, truth)), 1.0f + 0.1f, 1e-6);
}

TEST(Score, GradientFiltersHaveNormOneAndTheirDeviation) {
    constexpr int kSize = 40;
    const Matte nothing{kSize, kSize, std::vector<float>(kSize * kSize)};
    Matte dot = nothing, step = nothing;
    dot.values[20 * kSize + 20] = 0.5f;
    for (int i = 0; i < kSize * kSize; ++i) step.values[static_cast<std::size_t>(i)] = i % kSize < 20 ? 0 : 1;
    EXPECT_NEAR(sum(gradient_errors(dot, nothing)), 2 * 0.25f, 1e-6);  // across and up
    EXPECT_EQ(sum(gradient_errors(dot, dot)), 0.0f);
    // A row across an edge: the integral of the squared slope, 4 sqrt(pi) sigma^3.
    EXPECT_NEAR(sum(gradient_errors(nothing, step)) / kSize, 4 * std::sqrt(3.14159265) * std::pow(1.4, 3),
                0.2);
}

TEST(Score, CountsByRegionWithoutWhatIsExcluded) {
    ScorePictures p{row({0, 0.5f, 0.25f, 1, 0.75f}), row({0, 0.75f, 0.25f, 1, 0})};
    p.composite = {row({1, 0.5f, 0, 0, 1}), row({0, 0, 0, 0, 1}), row({0, 0, 0, 0, 1})};
    p.composite_truth = {row({0, 0, 0, 0, 0}), row({0, 0, 0, 0, 0}), row({0, 0, 0, 0, 0})};
    p.region = {0, 3, 3, 1, 0};
    p.counted = {1, 1, 1, 1, 0};
    std::vector<Score> scores = score_frame(p);
    const auto expect = [](const Score& s, const char* name, int pixels, double sad, double mse,
                           double error) {
        EXPECT_EQ(s.name, name);
        EXPECT_EQ(s.alpha.count, pixels) << name;
        EXPECT_NEAR(s.sad(), sad / 1000, 1e-9) << name;
        EXPECT_NEAR(s.mse(), mse, 1e-9) << name;
        EXPECT_NEAR(s.composite.sum_squares / 3 / std::max(pixels, 1), error, 1e-9) << name;
    };
    ASSERT_EQ(scores.size(), 8u);
    expect(scores[0], "all", 4, 0.25, 0.0625 / 4, 1.25 / 12);
    expect(scores[1], "mixed", 2, 0.25, 0.0625 / 2, 0.25 / 6);
    expect(scores[2], "backing", 1, 0, 0, 1.0 / 3);
    expect(scores[5], "hair", 2, 0.25, 0.0625 / 2, 0.25 / 6);
    expect(scores[7], "veil", 0, 0, 0, 0);
    scores[0].add(scores[0]);
    expect(scores[0], "all", 8, 0.25, 0.0625 / 4, 1.25 / 12);  // the mean of two frames
}

TEST(Score, SteadinessComparesChanges) {
    Steadiness steadiness;
    const std::vector<char> counted{1, 1, 1, 0};
    steadiness.add(row({0, 0.50f, 0.5f, 0}), row({0, 0.5f, 0.5f, 0}), counted);
    steadiness.add(row({0, 0.75f, 0.9f, 1}), row({0, 0.5f, 0.7f, 0}), counted);
    steadiness.add(row({0, 0.50f, 1.1f, 0}), row({0, 0.5f, 0.9f, 0}), counted);
    const double first = std::sqrt((0.0625 + 0.04) / 3), second = std::sqrt(0.0625 / 3);
    EXPECT_NEAR(steadiness.dtssd(), (first + second) / 2, 1e-6);
    EXPECT_EQ(steadiness.still().pixels, 2);  // the third moves, the fourth is left out
    EXPECT_NEAR(steadiness.still().deviation, 0.25 * std::sqrt(2.0) / 3 / 2, 1e-6);
}
