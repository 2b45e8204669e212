// The output passes against values worked out by hand, and in the node.
#include "keyer/OutputKernel.h"

#include <gmock/gmock.h>

#include <cmath>

#include "keyer/Rig.h"
#include "stages/WorkingScale.h"

using namespace test;
using testing::NanSensitiveFloatEq;
using testing::NanSensitiveFloatNear;
using testing::Pointwise;

namespace {

TEST(OutputKernel, DecodeUndoesTheKnee) {
    const struct {
        float v, decoded;
    } cases[] = {
        {0.0f, 0.0f},    {-25.5f, -0.1f},  // straight below the pivot
        {127.5f, 0.5f},  {170.0f, 1.0f},   // t = 1/3: t / (1 - t) + 0.5
        {191.25f, 1.5f}, {229.5f, 4.5f},   // t = 0.5, t = 0.8
        {255.0f, kInf},  {300.0f, kInf},  {kNaN, kNaN},
    };
    for (const auto& c : cases)
        EXPECT_THAT(decode(c.v, 0.5f), NanSensitiveFloatNear(c.decoded, 2e-6f)) << c.v;
    EXPECT_FLOAT_EQ(decode(51.0f, 0.1f), 0.1f / 0.9f / (1.0f - 0.1f / 0.9f) + 0.1f);
}

TEST(OutputKernel, RulesForEveryMode) {
    // Opaque, transparent, beyond both ends, half, infinite colour over an opaque and over a clear pixel.
    const float matte[] = {0.0f, 170.01f, 400.0f, -30.0f, 127.5f, 0.0f, 255.0f};
    const float colour[] = {51.0f, 51.0f, 51.0f, 51.0f, 102.0f, 255.0f, 51.0f};
    const float background[] = {0.5f, 0.5f, 0.25f, 0.5f, 1.0f, 0.5f, kInf};
    constexpr std::size_t n = std::size(matte);
    float k[n];
    opacity(matte, k, n);
    EXPECT_THAT(k, Pointwise(NanSensitiveFloatNear(1e-6f), {1.0f, 0.0f, 0.0f, 1.0f, 0.5f, 1.0f, 0.0f}));
    float out[n];
    output_colour(OutputMode::kComposite, colour, background, k, out, n);
    EXPECT_THAT(out, Pointwise(NanSensitiveFloatNear(1e-6f), {0.2f, 0.5f, 0.25f, 0.2f, 0.7f, kInf, kInf}));
    output_colour(OutputMode::kPremultiplied, colour, background, k, out, n);
    EXPECT_EQ(out[2], 0.0f);
    EXPECT_NEAR(out[4], 0.2f, 1e-6f);
    output_colour(OutputMode::kUnpremultiplied, colour, background, k, out, n);
    EXPECT_NEAR(out[2], 0.2f, 1e-6f);
    EXPECT_EQ(out[5], kInf);
}

TEST(OutputKernel, LinearScaleAndAddedColour) {
    // Opaque, two thirds, nearly and fully transparent, beyond both ends, NaN.
    const float matte[] = {0.0f, 170.0f, 204.0f, 255.0f, 400.0f, -30.0f, kNaN};
    float out[std::size(matte)];
    for (const auto scale : {linear_opacity, colour_share}) {  // the same line, without the knee's bend
        scale(matte, out, std::size(matte));
        EXPECT_THAT(
            out, Pointwise(NanSensitiveFloatNear(1e-6f), {1.0f, 1.0f / 3.0f, 0.2f, 0.0f, 0.0f, 1.0f, kNaN}));
    }
}

struct Merged {
    float colour, background, k, share;
    float expected[3];  // as composite, premultiplied, unpremultiplied
};

template <class Merge, class Matcher>
void check_merge(const Merged& c, const Merge& merge, const Matcher& like) {
    SCOPED_TRACE(testing::Message() << c.colour << " over " << c.background << ", " << c.k);
    for (const int mode : {0, 1, 2}) {
        float out = 0.0f;
        merge(static_cast<OutputMode>(mode), &c.colour, &c.background, &c.k, &c.share, &out, 1);
        EXPECT_THAT(out, like(c.expected[mode])) << mode;
        EXPECT_TRUE(std::isnan(out) || std::signbit(out) == std::signbit(c.expected[mode])) << mode;
    }
}

TEST(OutputKernel, AddedColour) {
    const Merged cases[] = {
        // Colours that decode to 0.1, 1.5 and what no half float holds, all as the matte has them.
        {25.5f, 0.5f, 0.2f, 0.2f, {0.5f, 0.1f, 0.5f}},
        {191.25f, 0.8f, 0.25f, 0.25f, {2.1f, 1.5f, 6.0f}},
        {255.0f, 1.0f, 0.5f, 0.5f, {65504.5f, 65504.0f, 131008.0f}},
        // Lowered to a quarter of its share; risen, which brings no colour.
        {102.0f, 0.5f, 0.2f, 0.8f, {0.5f, 0.1f, 0.5f}},
        {102.0f, 0.5f, 0.8f, 0.5f, {0.5f, 0.4f, 0.5f}},
        // Left out altogether, with and without colour of its own; solid.
        {102.0f, 0.75f, 0.0f, 0.8f, {0.75f, 0.0f, 0.0f}},
        {300.0f, -0.0f, 0.0f, 0.0f, {-0.0f, 0.0f, 0.0f}},
        {255.0f, kInf, 0.0f, 0.5f, {kInf, 0.0f, 0.0f}},
        {25.5f, kInf, 1.0f, 1.0f, {0.1f, 0.1f, 0.1f}},
        {kNaN, 0.5f, 1.0f, 1.0f, {kNaN, kNaN, kNaN}},
        {25.5f, 0.5f, kNaN, 0.5f, {kNaN, 0.1f, kNaN}},
    };
    for (const Merged& c : cases)
        check_merge(c, added_colour, [](float expected) { return NanSensitiveFloatEq(expected); });
}

TEST(OutputKernel, UnmixedColour) {
    constexpr auto kStored = Encoding::kStored;
    constexpr auto kSrgb = Encoding::kSrgb;
    const std::pair<Encoding, Merged> cases[] = {
        {kStored, {0.3f, 0.5f, 0.5f, 0.5f, {0.55f, 0.3f, 0.6f}}},
        // Lowered, risen, left out; without a share.
        {kStored, {0.4f, 0.5f, 0.2f, 0.8f, {0.5f, 0.1f, 0.5f}}},
        {kStored, {0.2f, 0.5f, 0.8f, 0.4f, {0.3f, 0.4f, 0.5f}}},
        {kStored, {0.4f, -0.0f, 0.0f, 0.8f, {-0.0f, 0.0f, 0.0f}}},
        {kStored, {0.0f, 0.5f, 0.5f, 0.0f, {0.25f, 0.0f, 0.0f}}},
        // Bright and solid before what is not finite.
        {kStored, {1000.0f, kInf, 1.0f, 1.0f, {1000.0f, 1000.0f, 1000.0f}}},
        {kSrgb, {1000.0f, kNaN, 1.0f, 1.0f, {1000.0f, 1000.0f, 1000.0f}}},
        {kStored, {kNaN, 0.5f, 0.5f, 0.5f, {kNaN, kNaN, kNaN}}},
        {kStored, {-1.0f, 0.0f, 1e-6f, 1e-6f, {-1.0f, -1.0f, -65504.0f}}},
        // White over black and half grey over white, by light.
        {kSrgb, {0.5f, 0.0f, 0.5f, 0.5f, {0.735357f, 0.5f, 1.0f}}},
        {kSrgb, {0.25f, 1.0f, 0.25f, 0.5f, {0.908087f, 0.125f, 0.5f}}},
        {kSrgb, {0.25f, -0.25f, 0.0f, 0.5f, {-0.25f, 0.0f, 0.0f}}},
    };
    const auto near = [](float expected) { return NanSensitiveFloatNear(expected, 2e-6f); };
    for (const auto& c : cases) {
        const auto unmixed = [&](OutputMode mode, auto... planes) {
            unmixed_colour({mode, c.first}, planes...);
        };
        check_merge(c.second, unmixed, near);
    }
}

TEST(OutputKernel, OverlayCoversScreenOrSubject) {
    const float region[] = {0.0f, 255.0f, 127.5f, kNaN, -1.0f};
    const float r[] = {1, 1, 1, 1, 1};
    const float g[] = {0.5f, 0.5f, 0.5f, 0.5f, 0.5f};
    const float b[] = {0, 0, 0, 0, 0};
    constexpr std::size_t n = std::size(region);
    const struct {
        OverlayMode mode;
        bool covered[n];
    } cases[] = {
        {OverlayMode::kScreen, {false, true, true, false, false}},
        {OverlayMode::kSubject, {true, false, false, false, false}},
        {static_cast<OverlayMode>(3), {false, false, false, false, false}},
    };
    for (const auto& c : cases) {
        float out[3][n];
        const OverlayParams params{c.mode, false, {0.0f, 1.0f, 1.0f, 0.25f}, 0.5f};
        overlay(params, region, {r, g, b}, {out[0], out[1], out[2]}, n);
        for (std::size_t i = 0; i < n; ++i) {
            EXPECT_FLOAT_EQ(out[0][i], c.covered[i] ? 0.75f : 1.0f) << i;
            EXPECT_FLOAT_EQ(out[1][i], c.covered[i] ? 0.625f : 0.5f) << i;
            EXPECT_FLOAT_EQ(out[2][i], c.covered[i] ? 0.25f : 0.0f) << i;
        }
    }
    float grey[n];
    overlay({OverlayMode::kScreen, true, {0, 0, 0, 1.0f}, 0.5f}, region, {r, g, b}, {grey, nullptr, nullptr},
            n);
    EXPECT_FLOAT_EQ(grey[0], 0.595f);  // 0.3 + 0.59 / 2
    EXPECT_EQ(grey[1], 0.0f);          // flat overlay colour
}

TEST(OutputKernel, HoldoutBringsTheForegroundBack) {
    const float holdout[] = {0.5f, 0.5f, 0.0f, kNaN, 1.0f};
    const float fg[] = {1.0f, 1.0f, kNaN, 1.0f, 0.25f};
    float alpha[] = {0.8f, 0.2f, 0.3f, 0.4f, 0.0f};
    float colour[] = {0.5f, 0.0f, 0.6f, 0.5f, 0.75f};
    holdout_alpha(holdout, alpha, 5);
    holdout_colour(holdout, fg, colour, 5);
    EXPECT_THAT(alpha, testing::ElementsAre(0.8f, 0.5f, 0.3f, 0.4f, 1.0f));
    // A NaN counts as not 0.
    EXPECT_THAT(colour, testing::ElementsAre(testing::FloatEq(0.75f), testing::FloatEq(0.5f), 0.6f,
                                             testing::IsNan(), 0.25f));
}

// A white lamp in the subject, from 0.9 to far beyond what any knee keeps.
TEST(Output, HighlightsStayNeutralAndFinite) {
    const auto lamp = [](Channel c, int x, int y) {
        const bool subject = (x - 20) * (x - 20) + (y - 15) * (y - 15) < 90;
        return subject ? 0.9f * std::pow(1.7f, static_cast<float>(x - 14)) : green_screen(c, 0, y);
    };
    for (const char* const settings :
         {"", "merge add; matte_scale linear", "shadow 1; spill_suppression 0", "output_mode unpremultiplied",
          "color_conformance 1; output_mode premultiplied"}) {
        SCOPED_TRACE(settings);
        Rig rig({0, 0, 41, 31}, lamp);
        rig.set(settings);
        const Picture clipped = render(rig.node);
        rig.set("highlights keep");
        const Picture kept = render(rig.node);
        for (int x = 14; x < 27; ++x) {
            ASSERT_EQ(kept.at(kAlpha, x, 15), 1.0f) << x;
            for (const Channel c : kMaskRgb) {
                const float plate = lamp(c, x, 15);
                const float before = clipped.at(c, x, 15);
                const float here = kept.at(c, x, 15);
                const float keep = std::clamp(plate - 1.0f, 0.0f, 1.0f);
                EXPECT_TRUE(keep > 0.0f || same_bit_pattern(here, before)) << x;
                EXPECT_NEAR(here, std::lerp(before, plate, keep), keep < 1.0f ? 1e-5f : 0.0f) << x;
            }
        }
        for (const Channel c : kMaskRgba) {
            EXPECT_TRUE(same_bit_pattern(kept.at(c, 3, 3), clipped.at(c, 3, 3)));
        }
    }
}

// The linear matte scale and the added foreground, with the colour of the operator that must supply it.
TEST(Output, TheTabActsOnBothPaths) {
    const struct {
        const char* settings;
        const char* colour;
        const char* matte;
    } cases[] = {{"spill_suppression 0", "outputMatte", "outputMatte"},
                 {"", "spillSuppression", "outputMatte"},
                 {"spill_suppression 0; color_conformance 1", "colorCorrection", "outputMatte"},
                 {"spill_suppression 0; shadow 1", "combineShadow", "combineShadow"},
                 {"shadow 1", "combineShadow", "combineShadow"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.settings);
        Rig rig;
        rig.connect_all();
        rig.node.set_input(4, nullptr);
        rig.knobs().matte_scale = rig.knobs().merge = 1;
        rig.set(c.settings);
        const Picture out = render(rig.node, 2);
        const Picture colour = render(rig.member(c.colour));
        const Picture matte = render(rig.member(c.matte));
        int mixed = 0;
        each(41, 31, [&](int x, int y) {
            const double opaque = std::clamp(1.0 - double{matte.at(kAlpha, x, y)} / 255.0, 0.0, 1.0);
            ASSERT_NEAR(double{out.at(kAlpha, x, y)}, opaque, 1e-6) << x << ' ' << y;
            mixed += opaque > 0.1 && opaque < 0.9 ? 1 : 0;
            const double s = double{colour.at(kRed, x, y)} / 255.0;  // straight up to the pivot
            const double added = s > 0.5 ? (2.0 * s - 1.0) / (2.0 - 2.0 * s) + 0.5 : s;
            const double expected = added + (1.0 - opaque) * ((x + y) % 9) * 0.1;
            ASSERT_NEAR(double{out.at(kRed, x, y)}, expected, 1e-5) << x << ' ' << y;
        });
        EXPECT_GT(mixed, 10);
    }
}

// With the foreground added, whatever made the matte what it is in the end.
TEST(Output, TheFinalMatteDecidesWhatIsBackgroundAlone) {
    const std::pair<bool, const char*> stages[] = {
        {false, ""},
        {false, "cleanup 1"},
        {false, "cleanup 1; cleanup_shrink 10,10; cleanup_blur 2,1"},
        {true, ""},
        {false, "shadow 1; cleanup 1"},
        {false, "unmix_method unmix"},
        {false, "unmix_method unmix; unmix_encoding sRGB; color_conformance 1"},
        {false, "unmix_method unmix; shadow 1; cleanup 1"}};
    const auto half_even = [](Channel c, int x, int y) {
        return x < 12 ? kPlainBacking[c] : green_screen(c, x, y);
    };
    const auto light = [](Channel, int x, int y) { return static_cast<float>(x + y) * 0.01f; };
    for (const auto& [mattes, stage] : stages) {
        for (int variant = 0; variant < 6; ++variant) {
            SCOPED_TRACE(stage + std::to_string(variant));
            Rig rig({0, 0, 41, 31}, half_even);
            if (mattes) rig.connect_all();
            rig.node.set_input(1, nullptr);
            rig.node.set_input(2, &rig.bg);
            rig.bg.set_pixel(light);
            rig.knobs().merge = 1;
            rig.knobs().matte_scale = variant / 3;
            rig.knobs().output_mode = variant % 3;
            rig.set(stage);
            const Picture over_light = render(rig.node, 2);
            rig.bg.set_pixel([](Channel, int, int) { return -0.0f; });
            rig.update();
            const Picture over_dark = render(rig.node, 2);
            int clear = 0;
            int solid = 0;
            each(41, 31, [&](int x, int y) {
                const float alpha = over_light.at(kAlpha, x, y);
                clear += alpha == 0.0f ? 1 : 0;
                solid += alpha == 1.0f ? 1 : 0;
                const float left = variant % 3 == 0 ? light(kRed, x, y) : 0.0f;
                const float here = over_light.at(kRed, x, y);
                EXPECT_TRUE(alpha != 0.0f || same_bit_pattern(here, left));
                EXPECT_TRUE(alpha != 1.0f || same_bit_pattern(here, over_dark.at(kRed, x, y)));
            });
            EXPECT_GT(clear, 100);
            EXPECT_GT(solid, 10);
        }
    }
}

}  // namespace
