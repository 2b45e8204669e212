// The analyses on many samples at once: the same answer each time, which holds.
#include <gtest/gtest.h>

#include <random>

#include "panel/KnobCopy.h"
#include "tools/AddMatteAnalysis.h"
#include "tools/ColorMatchAnalysis.h"
#include "tools/MatteSampleAnalysis.h"
#include "tools/OverlayAnalysis.h"
#include "tools/SpillAnalysis.h"

namespace {

using Sample = VeloxaSample::Sample;

class Node {
  public:
    Node() : controls(values_.data(), 1) {
        knobs.screen_color = {0.15f, 0.6f, 0.2f};
        copy_knobs(knobs, 0, controls);
    }
    Setting setting() const { return {knobs, controls, 0}; }

    KnobStorage knobs;

  private:
    std::array<std::int32_t, ControlBlock::kCount> values_{};

  public:
    ControlBlock controls;
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
std::vector<double> settle(const char* name, Node& node, const Analyse& analyse) {
    const Tuning tuned = analyse(node.setting());
    const Tuning once_more = analyse(node.setting());
    EXPECT_TRUE(once_more.knobs == tuned.knobs) << name << ": not the same twice";
    node.knobs = tuned.knobs;
    copy_knobs(node.knobs, 0, node.controls);
    const Tuning again = analyse(node.setting());
    EXPECT_TRUE(again.knobs == tuned.knobs) << name << ": moved once more";
    return tuned.misses;
}

TEST(Analyses, AHundredSamples) {
    Random random;
    const auto zeros = [](std::size_t n) { return std::vector<double>(n); };
    {
        Node node;
        std::vector<OverlaySample> samples;
        for (int i = 0; i < 100; ++i) {
            const bool screen = i % 2 == 0;
            const Sample s = screen ? Sample{0.19f, 0.56f, 0.23f, 0} : Sample{0.4f, 0.5f, 0.35f, 0};
            samples.push_back({random.near(s, 0.01f), {}, screen});
        }
        EXPECT_EQ(settle("overlay", node, [&](const Setting& s) { return analyse_overlay(s, samples); }),
                  zeros(100));
        for (std::size_t i = 0; i < 100; ++i) samples[i].screen = i % 3 == 0;
        settle("overlay, contradictory", node, [&](const Setting& s) { return analyse_overlay(s, samples); });
    }
    {
        Node node;
        std::vector<PlatedSample> solid, backing;
        for (int i = 0; i < 100; ++i) {
            solid.push_back({random.near({0.35f, 0.45f, 0.3f, 0}, 0.03f), {}});
            backing.push_back({random.near({0.15f, 0.6f, 0.2f, 0}, 0.01f), {}});
        }
        const auto mattes = sample_mattes(node.setting(), backing);
        const auto run = [&](const Setting& s) { return analyse_add_matte(s, solid, backing, mattes); };
        EXPECT_EQ(settle("add matte", node, run), zeros(200));
        for (std::size_t i = 0; i < 50; ++i) solid[2 * i] = backing[i];
        settle("add matte, contradictory", node, run);
    }
    {
        Node node;
        std::vector<MatteSample> samples;
        for (int i = 0; i < 100; ++i) {
            const bool noise = i % 2 == 0;
            samples.push_back({noise ? random(200.0f, 250.0f) : random(20.0f, 120.0f), noise});
        }
        const auto run = [&](const Setting& s) { return analyse_matte_samples(s, true, samples); };
        EXPECT_EQ(settle("noise and detail", node, run), zeros(100));
        for (auto& sample : samples) sample.matte = random(0.0f, 255.0f);
        settle("noise, contradictory", node, run);
    }
    {
        Node node;
        std::vector<SpillSample> samples;
        for (int i = 0; i < 100; ++i) samples.push_back({random.near({50, 75, 30, 5}, 2.0f), true});
        const auto run = [&](const Setting& s) { return analyse_spill(s, samples); };
        EXPECT_EQ(settle("restore spill", node, run), zeros(100));
        for (std::size_t i = 0; i < 100; ++i) samples[i].restore = i % 2 == 0;
        settle("spill, contradictory", node, run);
    }
    {
        Node node;
        std::vector<Sample> keyed, background;
        for (int i = 0; i < 100; ++i) {
            const float level = random(10.0f, 160.0f);
            keyed.push_back({level, level, level, 0});
            background.push_back({20.0f + 0.9f * level, 10.0f + level, 0.8f * level, 0});
        }
        const auto run = [&](const Setting& s) { return match_colors(s, keyed, background).tuning; };
        EXPECT_EQ(settle("color match", node, run), zeros(3));
    }
}

TEST(Analyses, NothingAskedNothingTurned) {
    const Node node;
    const Setting s = node.setting();
    const Tuning tunings[] = {analyse_overlay(s, {}), analyse_add_matte(s, {}, {}, {}),
                              analyse_matte_samples(s, false, {}), analyse_spill(s, {}),
                              match_colors(s, {}, {}).tuning};
    for (const Tuning& t : tunings) EXPECT_TRUE(t.knobs == node.knobs) << &t - tunings;
}

}  // namespace
