// The tuner on questions whose answers are known in closed form.
#include "tools/Tuner.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using K = KnobStorage;

const std::vector<Dial> kDials{Dial::number(&K::brights, 0.0, 1000.0), Dial::number(&K::darks, 0.0, 500.0)};

// Sample i asks for `brights` + `darks` to reach low[i] and to stay at or below high[i], whole numbers.
struct Asked {
    double low, high;
};

Misses sums(const std::vector<Asked>& asked) {
    return [asked](const KnobStorage& k, std::size_t first, std::span<double> out) {
        const double sum =
            std::trunc(static_cast<double>(k.brights)) + std::trunc(static_cast<double>(k.darks));
        for (std::size_t i = 0; i < out.size(); ++i) {
            out[i] = std::max({asked[first + i].low - sum, sum - asked[first + i].high, 0.0});
        }
    };
}

TEST(Tuner, GoesToTheNearestAnswer) {
    constexpr double kFar = 1e9;
    const struct {
        std::vector<Asked> asked;
        float present;  // brights; darks begin at 0
        float brights, darks;
        std::vector<double> misses;
    } cases[] = {
        {{}, 100.5f, 100.5f, 0.0f, {}},
        {{{90, kFar}}, 100.5f, 100.5f, 0.0f, {0}},   // nothing to do: kept to the bit
        {{{150, kFar}}, 100.5f, 150.0f, 0.0f, {0}},  // a step of darks counts twice as much
        {{{0, 40}}, 100.5f, 40.0f, 0.0f, {0}},
        {{{120, 121}, {110, kFar}}, 100.0f, 120.0f, 0.0f, {0, 0}},
        {{{1400, kFar}}, 100.0f, 1000.0f, 400.0f, {0}},            // brights alone end at 1000
        {{{0, 40}, {150, kFar}}, 100.0f, 150.0f, 0.0f, {110, 0}},  // the newer one wins
        {{{150, kFar}, {0, 40}}, 100.0f, 40.0f, 0.0f, {110, 0}},
        {{{120, kFar}, {1, 0}, {0, 90}, {50, 60}}, 100.0f, 60.0f, 0.0f, {60, 60, 0, 0}},
        {{{5000, kFar}}, 100.0f, 100.0f, 0.0f, {4900}},  // out of reach: nothing is turned
        {{{150, kFar}}, -20.0f, 150.0f, 0.0f, {0}},      // from outside the range
        {{{1300, kFar}}, 1200.0f, 1200.0f, 100.0f, {0}},
    };
    for (const auto& c : cases) {
        KnobStorage present;
        present.brights = c.present;
        const Tuning tuned = tune(present, kDials, std::vector<Ray>{{1, 1}}, c.asked.size(), sums(c.asked));
        EXPECT_EQ(tuned.knobs.brights, c.brights);
        EXPECT_EQ(tuned.knobs.darks, c.darks);
        EXPECT_EQ(tuned.misses, c.misses);
        const Tuning again =
            tune(tuned.knobs, kDials, std::vector<Ray>{{1, 1}}, c.asked.size(), sums(c.asked));
        EXPECT_EQ(again.knobs.brights, c.brights);
        EXPECT_EQ(again.knobs.darks, c.darks);
    }
}

TEST(Tuner, LeavesDialsThatAreNoNumberAlone) {
    KnobStorage present;
    present.brights = std::numeric_limits<float>::quiet_NaN();
    present.darks = std::numeric_limits<float>::infinity();
    const Misses never = [](const KnobStorage&, std::size_t, std::span<double> out) { out[0] = 1.0; };
    const Tuning tuned = tune(present, kDials, {}, 1, never);
    EXPECT_TRUE(std::isnan(tuned.knobs.brights));
    EXPECT_TRUE(std::isinf(tuned.knobs.darks));
    EXPECT_EQ(tuned.misses[0], 1.0);
}

// Every cell of a dial is entered at a value that its control truncates to that cell.
TEST(Dial, CellsAreTheControls) {
    const KnobStorage k;
    const Dial tolerance = Dial::component(&K::screen_tolerance, 1, 0.0, 1.0, 0.5, 1.0 / 510.0);
    for (int cell = tolerance.lowest(k.screen_tolerance[1]); cell <= 122; ++cell) {  // below the knee at 0.75
        const float value = tolerance.value(k.screen_tolerance[1], cell);
        const double control = std::trunc(255.0 * static_cast<double>(2.0f * (value - 0.5f)));
        EXPECT_EQ(control, 5.0 + cell) << value;  // 0.51 is 5.1
    }
    // A level of 0.75 lies at 0.5 + 0.5 * 0.25 / 1.25 = 0.6 of 255, which is 153.
    const Dial recover = Dial::level(&K::cleanup_recover, 0.0, 200.0);
    EXPECT_EQ(recover.highest(0.0f), 254);
    EXPECT_NEAR(recover.value(0.0f, 153), 0.75, 0.01);
    EXPECT_NEAR(recover.value(0.0f, 100), 100.5 / 255.0, 1e-6);
}

}  // namespace
