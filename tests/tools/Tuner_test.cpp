// The tuner on questions whose answers are known in closed form.
#include "tools/Tuner.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "panel/KnobCopy.h"

namespace {

using K = KnobStorage;

const std::vector<Dial> kDials{&K::brights, &K::film_strength};  // 0 to 1000, 0 to 500

// Sample i asks for the sum of both to reach low[i] and to stay at or below high[i], whole numbers.
struct Asked {
    double low, high;
};

Misses sums(const std::vector<Asked>& asked) {
    return [asked](const KnobStorage& k, std::size_t first, std::span<double> out) {
        const double sum =
            std::trunc(static_cast<double>(k.brights)) + std::trunc(static_cast<double>(k.film_strength));
        for (std::size_t i = 0; i < out.size(); ++i) {
            out[i] = std::max({asked[first + i].low - sum, sum - asked[first + i].high, 0.0});
        }
    };
}

TEST(Tuner, GoesToTheNearestAnswer) {
    constexpr double kFar = 1e9;
    const struct {
        std::vector<Asked> asked;
        float present;  // brights; film_strength begins at 0
        float brights, film_strength;
        std::vector<double> misses;
    } cases[] = {
        {{}, 100.5f, 100.5f, 0.0f, {}},
        {{{90, kFar}}, 100.5f, 100.5f, 0.0f, {0}},   // nothing to do: kept to the bit
        {{{150, kFar}}, 100.5f, 150.0f, 0.0f, {0}},  // a step of film_strength counts twice as much
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
        SCOPED_TRACE(&c - cases);
        KnobStorage present;
        present.brights = c.present;
        for (const bool again : {false, true}) {  // where nothing moves
            const Tuning tuned =
                tune(present, kDials, {}, std::vector<Ray>{{1, 1}}, c.asked.size(), sums(c.asked));
            EXPECT_EQ(tuned.knobs.brights, c.brights) << again;
            EXPECT_EQ(tuned.knobs.film_strength, c.film_strength) << again;
            EXPECT_EQ(tuned.misses, c.misses) << again;
            present = tuned.knobs;
        }
    }
}

TEST(Tuner, LeavesDialsThatAreNoNumberAlone) {
    KnobStorage present;
    present.brights = std::numeric_limits<float>::quiet_NaN();
    present.film_strength = std::numeric_limits<float>::infinity();
    const Misses never = [](const KnobStorage&, std::size_t, std::span<double> out) { out[0] = 1.0; };
    const Tuning tuned = tune(present, kDials, {}, {}, 1, never);
    EXPECT_TRUE(std::isnan(tuned.knobs.brights));
    EXPECT_TRUE(std::isinf(tuned.knobs.film_strength));
    EXPECT_EQ(tuned.misses[0], 1.0);
}

// Every cell of a dial is entered at a value whose control is that cell.
TEST(Dial, CellsAreTheControls) {
    KnobStorage present;
    present.cleanup = present.color_conformance = true;
    const struct {
        Dial dial;
        int low, high;  // cells from the present value
    } cases[] = {
        {&K::brights, -100, 900},
        {&K::darks, -500, 500},
        {&K::cleanup_recover, 0, 170},
        {{&K::screen_tolerance, 1}, -260, 122},  // to the knee
        {{&K::spill_ambience, 0}, -127, 42},
        {{&K::spill_backgroundveiling, 2}, -100, 150},
        {{&K::color_darks, 0}, -100, 100},
        {{&K::color_brights, 1}, -100, 100},
    };
    std::array<std::int32_t, ControlBlock::kCount> values{};
    ControlBlock controls(values.data(), 1);
    for (const auto& [dial, low, high] : cases) {
        const ControlGroup& group = knob_table()[dial.row].target.controls;
        const int control = std::array{group.first, group.second, group.third}[dial.index];
        const float from = dial.in(present);
        copy_knobs(present, 0, controls);
        const int here = controls.get(control);
        EXPECT_EQ(dial.lowest(from), low) << control;
        EXPECT_GE(dial.highest(from), high) << control;
        for (int cell = low; cell <= high; ++cell) {
            KnobStorage knobs = present;
            dial.in(knobs) = dial.value(from, cell);
            copy_knobs(knobs, 0, controls);
            ASSERT_EQ(controls.get(control), here + cell) << control;
        }
    }
}

}  // namespace
