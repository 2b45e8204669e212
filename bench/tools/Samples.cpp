#include "tools/Samples.h"

#include <algorithm>

#include "panel/InputFlags.h"
#include "panel/KnobCopy.h"
#include "tools/AddMatteAnalysis.h"
#include "tools/ColorMatchAnalysis.h"
#include "tools/MatteSampleAnalysis.h"
#include "tools/OverlayAnalysis.h"
#include "tools/SpillAnalysis.h"

namespace bench {

namespace {

using Sample = VeloxaSample::Sample;

const Sample kBacking{0.15f, 0.6f, 0.2f, 0.0f};

class Draw {
  public:
    float between(float low, float high) {
        return low + (high - low) * static_cast<float>(engine_() % 10001) / 10000.0f;
    }
    Sample near(const Sample& s, float spread) {
        Sample result = s;
        for (float& v : result) v += between(-spread, spread);
        return result;
    }
    Sample anything(float most) {
        return {between(0.0f, most), between(0.0f, most), between(0.0f, most), between(0.0f, most)};
    }

  private:
    std::mt19937 engine_{7};
};

// Whether sample i asks for the first of two things.
bool first_wish(Wish wish, std::size_t i, Draw& draw) {
    switch (wish) {
        case Wish::kAgreeable:
            return i % 2 == 0;
        case Wish::kContradictory:
            return (i % 2 == 0) != (i % 3 == 0);
        case Wish::kScattered:
            return draw.between(0.0f, 1.0f) < 0.5f;
    }
    return false;
}

std::vector<OverlaySample> overlay_list(Wish wish, std::size_t n) {
    Draw draw;
    std::vector<OverlaySample> samples;
    for (std::size_t i = 0; i < n; ++i) {
        const Sample s = i % 2 == 0 ? Sample{0.19f, 0.56f, 0.23f, 0} : Sample{0.4f, 0.5f, 0.35f, 0};
        samples.push_back({wish == Wish::kScattered ? draw.anything(1.0f) : draw.near(s, 0.01f),
                           draw.near(kBacking, 0.01f), first_wish(wish, i, draw)});
    }
    return samples;
}

Tuning add_matte(Wish wish, std::size_t n, const Setting& setting) {
    Draw draw;
    std::vector<PlatedSample> solid;
    std::vector<PlatedSample> backing;
    for (std::size_t i = 0; i < n; ++i) {
        const Sample plate = draw.near(kBacking, 0.01f);
        if (i % 2 == 0) {
            backing.push_back({draw.near(plate, 0.01f), plate});
        } else if (wish == Wish::kScattered) {
            solid.push_back({draw.anything(1.0f), plate});
        } else if (wish == Wish::kContradictory && i % 3 == 0) {
            solid.push_back({draw.near(plate, 0.01f), plate});
        } else {
            solid.push_back({draw.near({0.35f, 0.45f, 0.3f, 0}, 0.03f), plate});
        }
    }
    KnobStorage untouched = setting.knobs;
    untouched.brights = KnobStorage{}.brights;
    untouched.darks = untouched.warm = untouched.cool = 0.0f;
    const auto mattes = sample_mattes({untouched, setting.controls, setting.input_flags}, backing);
    return analyse_add_matte(setting, solid, backing, mattes);
}

std::vector<MatteSample> matte_list(Wish wish, std::size_t n) {
    Draw draw;
    std::vector<MatteSample> samples;
    for (std::size_t i = 0; i < n; ++i) {
        const float matte = wish == Wish::kScattered ? draw.between(0.0f, 255.0f)
                            : i % 2 == 0             ? draw.between(200.0f, 250.0f)
                                                     : draw.between(20.0f, 120.0f);
        samples.push_back({matte, first_wish(wish, i, draw)});
    }
    return samples;
}

std::vector<SpillSample> spill_list(Wish wish, std::size_t n) {
    Draw draw;
    std::vector<SpillSample> samples;
    for (std::size_t i = 0; i < n; ++i) {
        const Sample s = wish == Wish::kScattered ? draw.anything(255.0f) : draw.near({50, 75, 30, 5}, 2.0f);
        samples.push_back({s, wish == Wish::kAgreeable || first_wish(wish, i, draw)});
    }
    return samples;
}

Tuning color_match(Wish wish, std::size_t n, const Setting& setting) {
    Draw draw;
    std::vector<Sample> keyed;
    std::vector<Sample> background;
    for (std::size_t i = 0; i < n; ++i) {
        const float level = draw.between(10.0f, 160.0f);
        keyed.push_back(wish == Wish::kScattered ? draw.anything(255.0f) : Sample{level, level, level, 0});
        const float other = wish == Wish::kContradictory && i % 3 == 0 ? 170.0f - level : level;
        background.push_back(wish == Wish::kScattered
                                 ? draw.anything(60.0f)
                                 : Sample{20.0f + 0.9f * other, 10.0f + other, 0.8f * other, 0});
    }
    return match_colors(setting, keyed, background).tuning;
}

}  // namespace

SampledNode::SampledNode(bool clean_plate)
    : controls_(values_.data(), 1), flags_(clean_plate ? kCpUsable : 0) {
    KnobStorage knobs;
    knobs.screen_color = {kBacking[0], kBacking[1], kBacking[2]};
    adopt(knobs);
}

void SampledNode::adopt(const KnobStorage& knobs) {
    knobs_ = knobs;
    copy_knobs(knobs_, flags_, controls_);
}

std::vector<Solver> solvers(Wish wish) {
    std::vector<Solver> made;
    const auto add = [&made](const std::string& name, bool plated, std::size_t samples, const auto& run) {
        made.push_back({name + ", " + std::to_string(samples), plated,
                        [=](const Setting& setting) { return run(setting, samples); }});
    };
    constexpr std::size_t kList = VeloxaSample::kCapacity;
    for (const bool plated : {false, true}) {
        const std::string suffix = plated ? ", clean plate" : "";
        for (const std::size_t most : {kList, 3 * kList}) {  // two saved lists, one of pixels
            add("overlay" + suffix, plated, most, [wish](const Setting& setting, std::size_t n) {
                return analyse_overlay(setting, overlay_list(wish, n));
            });
        }
        // Half of them the backing's.
        add("add matte" + suffix, plated, 2 * kList,
            [wish](const Setting& setting, std::size_t n) { return add_matte(wish, n, setting); });
    }
    for (const bool noise : {true, false}) {
        add(noise ? "remove noise" : "hold shadow", false, kList, [=](const Setting& setting, std::size_t n) {
            return analyse_matte_samples(setting, noise, matte_list(wish, n));
        });
    }
    for (const std::size_t most : {kList, 3 * kList}) {
        add("spill", false, most, [wish](const Setting& setting, std::size_t n) {
            return analyse_spill(setting, spill_list(wish, n));
        });
    }
    add("match color", false, kList,
        [wish](const Setting& setting, std::size_t n) { return color_match(wish, n, setting); });
    return made;
}

}  // namespace bench
