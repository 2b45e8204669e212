// The analyses on many samples at once: the same answer each time, which holds.
#include <gmock/gmock.h>

#include <random>

#include "panel/InputFlags.h"
#include "panel/KnobCopy.h"
#include "support/StageControls.h"
#include "tools/AddMatteAnalysis.h"
#include "tools/ColorMatchAnalysis.h"
#include "tools/MatteSampleAnalysis.h"
#include "tools/OverlayAnalysis.h"
#include "tools/SpillAnalysis.h"

namespace {

using Sample = VeloxaSample::Sample;

struct Node {
    Node() {
        knobs.screen_color = {0.15f, 0.6f, 0.2f};
        copy_knobs(knobs, 0, controls.block);
    }
    Setting setting() const { return {knobs, controls.block, 0}; }

    KnobStorage knobs;
    test::StageControls controls;
};

class Random {
  public:
    float operator()(float low, float high) {
        return low + (high - low) * static_cast<float>(engine_() % 10001) / 10000.0f;
    }
    Sample near(const Sample& s, float spread) {
        Sample result = s;
        for (float& v : result) v += (*this)(-spread, spread);
        return result;
    }

  private:
    std::mt19937 engine_{7};
};

// Runs an analysis and runs it again on what it found: the second time nothing moves. Returns the misses.
template <class Analyse>
std::vector<double> settle(Node& node, const Analyse& analyse) {
    const Tuning tuned = analyse(node.setting());
    EXPECT_TRUE(analyse(node.setting()).knobs == tuned.knobs) << "not the same twice";
    node.knobs = tuned.knobs;
    copy_knobs(node.knobs, 0, node.controls.block);
    EXPECT_TRUE(analyse(node.setting()).knobs == tuned.knobs) << "moved once more";
    return tuned.misses;
}

// Samples that can all be satisfied are; what `spoil` makes of each of them settles too.
template <class List, class Analyse, class Spoil>
void satisfy(const char* name, List& samples, const Analyse& analyse, const Spoil& spoil) {
    SCOPED_TRACE(name);
    Node node;
    EXPECT_THAT(settle(node, analyse), testing::Each(0.0));
    for (std::size_t i = 0; i < samples.size(); ++i) spoil(samples[i], i);
    settle(node, analyse);
}

TEST(Analyses, AHundredSamples) {
    Random random;
    const Node node;
    std::vector<OverlaySample> overlay;
    std::vector<PlatedSample> solid, backing;
    std::vector<MatteSample> mattes;
    std::vector<SpillSample> spill;
    std::vector<Sample> keyed, background;
    for (int i = 0; i < 100; ++i) {
        const bool even = i % 2 == 0;
        const Sample s = even ? Sample{0.19f, 0.56f, 0.23f, 0} : Sample{0.4f, 0.5f, 0.35f, 0};
        overlay.push_back({random.near(s, 0.01f), {}, even});
        solid.push_back({random.near({0.35f, 0.45f, 0.3f, 0}, 0.03f), {}});
        backing.push_back({random.near({0.15f, 0.6f, 0.2f, 0}, 0.01f), {}});
        mattes.push_back({even ? random(200.0f, 250.0f) : random(20.0f, 120.0f), even});
        spill.push_back({random.near({50, 75, 30, 5}, 2.0f), true});
        const float level = random(10.0f, 160.0f);
        keyed.push_back({level, level, level, 0});
        background.push_back({20.0f + 0.9f * level, 10.0f + level, 0.8f * level, 0});
    }
    const auto kept = sample_mattes(node.setting(), backing);
    satisfy(
        "overlay", overlay, [&](const Setting& s) { return analyse_overlay(s, overlay); },
        [](OverlaySample& s, std::size_t i) { s.screen = i % 3 == 0; });
    satisfy(
        "add matte", solid, [&](const Setting& s) { return analyse_add_matte(s, solid, backing, kept); },
        [&](PlatedSample& s, std::size_t i) { s = i % 2 == 0 ? backing[i / 2] : s; });
    satisfy(
        "noise and detail", mattes, [&](const Setting& s) { return analyse_matte_samples(s, true, mattes); },
        [&](MatteSample& s, std::size_t) { s.matte = random(0.0f, 255.0f); });
    satisfy(
        "spill", spill, [&](const Setting& s) { return analyse_spill(s, spill); },
        [](SpillSample& s, std::size_t i) { s.restore = i % 2 == 0; });
    const std::vector<Sample> reverse(background.rbegin(), background.rend());
    satisfy(
        "color match", background,
        [&](const Setting& s) { return match_colors(s, keyed, background).tuning; },
        [&](Sample& s, std::size_t i) { s = reverse[i]; });
}

TEST(Analyses, SpillIsJudgedInBothDirections) {
    Node node;
    node.knobs.spill_warm = node.knobs.spill_cool = -200.0f;  // suppresses nothing
    const struct {
        SpillSample sample;
        float veiling;  // of the primary; 0.4 takes all of the backing out
        bool agrees;
    } cases[] = {
        {{{150, 150, 50, 0}, false}, 0.4f, true},  // as much as the larger of the two others
        {{{150, 160, 50, 0}, false}, 0.4f, false},  {{{100, 60, 100, 128}, true}, 0.4f, true},
        {{{100, 60, 100, 128}, true}, 0.3f, false},  // too much comes back
        {{{100, 60, 100, 128}, true}, 0.5f, false},
    };
    for (const auto& c : cases) {
        KnobStorage knobs = node.knobs;
        knobs.spill_backgroundveiling[1] = c.veiling;
        EXPECT_EQ(spill_agrees(node.setting(), knobs, {&c.sample, 1}).front(), c.agrees) << &c - cases;
    }
}

// The tolerance of the primary is the crude matte's, the veiling that of a constant backing.
TEST(Analyses, ACleanPlateChangesWhatIsTurned) {
    const Node node;
    for (const std::uint32_t flags : {std::uint32_t{0}, kCpUsable}) {
        const Setting setting{node.knobs, node.controls.block, flags};
        EXPECT_EQ(overlay_dials(setting).size(), flags != 0 ? 7U : 6U);
        EXPECT_EQ(spill_dials(setting, true).size(), flags != 0 ? 9U : 10U);
    }
}

}  // namespace
