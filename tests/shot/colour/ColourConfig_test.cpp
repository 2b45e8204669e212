#include "shot/colour/ColourConfig.h"

#include <fstream>

#include "shot/Files.h"

using namespace veloxa;
using namespace Zo::Image;
using testing::AllOf;
using testing::HasSubstr;

namespace {

std::array<float, 3> converted(const ColourConfig& config, const std::string& from, const std::string& to,
                               std::array<float, 3> v) {
    float rgba[4] = {v[0], v[1], v[2], 0.25f};
    config.between(config.space_named("", from), config.space_named("", to)).apply(rgba, 1);
    EXPECT_EQ(rgba[3], 0.25f);
    return {rgba[0], rgba[1], rgba[2]};
}

// A grey keeps its chromaticity, so a curve's published points show in every channel.
TEST(ColourConfig, CurvesGoThroughTheirPublishedPoints) {
    const struct {
        const char* space;
        double value, light;
    } points[] = {
        {"sRGB", 0.5, 0.2140411},      {"sRGB", -0.02, -0.02 / 12.92},       {"sRGB", 1.0, 1.0},
        {"Rec.709", 0.5, 0.1894646},   {"Display-P3", 0.5, 0.2140411},       {"ACEScct", 0.4135884, 0.18},
        {"ACEScc", 0.4135884, 0.18},   {"LogC3", 400.0 / 1023.0, 0.18},      {"S-Log3", 420.0 / 1023.0, 0.18},
        {"V-Log", 0.423311, 0.18},     {"Log3G10", 1.0 / 3.0, 0.18},         {"film-log", 95.0 / 1023.0, 0.0},
        {"cineon", 685.0 / 1023, 1.0}, {"film-log", 445.0 / 1023, 0.149304}, {"ACEScg", 0.4, 0.4},
    };
    const ColourConfig config = ColourConfig::built_in();
    for (const auto& p : points) {
        const auto v = static_cast<float>(p.value);
        for (const float light : converted(config, p.space, "scene_linear", {v, v, v})) {
            EXPECT_NEAR(static_cast<double>(light), p.light, 3e-4 * std::max(p.light, 0.1)) << p.space;
        }
    }
}

TEST(ColourConfig, PrimariesMeetThosePublished) {
    const struct {
        const char* space;
        std::array<float, 3> light;  // of full red in it, with Rec.709's primaries
    } reds[] = {
        {"linear-Rec.2020", {1.6605f, -0.1246f, -0.0182f}},
        {"Display-P3", {1.2249f, -0.0421f, -0.0196f}},
        {"ACEScg", {1.7051f, -0.1303f, -0.0240f}},
        {"ACES2065-1", {2.5217f, -0.2765f, -0.0154f}},
    };
    for (const auto& red : reds) {
        const auto light = converted(ColourConfig::built_in(), red.space, "linear", {1.0f, 0.0f, 0.0f});
        for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(light[c], red.light[c], 2e-4) << red.space;
    }
}

TEST(ColourConfig, EverySpaceThereAndBackIsWhereItWas) {
    const ColourConfig config = ColourConfig::built_in();
    for (const ColourSpace& space : config.spaces()) {
        const std::array<float, 3> values{0.35f, 0.42f, 0.5f};
        const auto light = converted(config, space.name, "linear", values);
        const auto again = converted(config, "linear", space.name, light);
        for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(again[c], values[c], 2e-4) << space.name;
    }
}

TEST(ColourConfig, SaysWhichNamesThereAre) {
    const ColourConfig config = ColourConfig::built_in();
    EXPECT_EQ(config.space_named("--in-space ", "LIN_AP1"), "ACEScg");
    EXPECT_THAT([&] { config.space_named("--in-space ", "acescgg"); },
                testing::ThrowsMessage<UsageError>(
                    AllOf(HasSubstr("--in-space acescgg: there is no such colour space; there are linear, "),
                          HasSubstr(", raw; did you mean 'ACEScg'?"))));
    const auto displays = config.displays();
    ASSERT_EQ(displays.front().name, "sRGB");
    float rgba[4] = {0.2140411f, 0.2140411f, 0.2140411f, 1.0f};
    config.for_display("linear", "sRGB", displays.front().views.front()).apply(rgba, 1);
    EXPECT_NEAR(rgba[0], 0.5f, 1e-5);
}

class OcioTest : public test::Files {
  protected:
    ~OcioTest() override { ::unsetenv("OCIO"); }
    void use(const std::string& text) {
        std::ofstream(file("c.ocio")) << text;
        ::setenv("OCIO", file("c.ocio").c_str(), 1);
    }
};

TEST_F(OcioTest, TheConfigurationOfTheEnvironmentCounts) {
    use("ocio_profile_version: 2\n"
        "roles: {scene_linear: light, default: light}\n"
        "file_rules:\n"
        "  - !<Rule> {name: plates, colorspace: doubled, pattern: \"*plate*\", extension: exr}\n"
        "  - !<Rule> {name: Default, colorspace: default}\n"
        "displays: {screen: [!<View> {name: plain, colorspace: light}]}\n"
        "colorspaces:\n"
        "  - !<ColorSpace> {name: light, aliases: [lin_ap1]}\n"
        "  - !<ColorSpace>\n"
        "    name: doubled\n"
        "    to_scene_reference: !<MatrixTransform> {matrix: [2,0,0,0, 0,2,0,0, 0,0,2,0, 0,0,0,1]}\n");
    const ColourConfig config = ColourConfig::load();
    EXPECT_EQ(config.scene_linear(), "light");
    EXPECT_EQ(converted(config, "doubled", "light", {1.0f, 2.0f, 3.0f}), (std::array{2.0f, 4.0f, 6.0f}));
    EXPECT_EQ(config.space_by_rule("a/plate.0001.exr"), "doubled");
    EXPECT_EQ(config.space_by_rule("a/plate.0001.png"), "");
    EXPECT_EQ(config.known("light"), known_space("ACEScg"));
    EXPECT_EQ(config.name_of(*known_space("sRGB")), "");
}

TEST_F(OcioTest, OneThatCannotBeLoadedIsNamed) {
    for (const char* text : {"ocio_profile_version: 2\nroles: [", "nonsense"}) {
        use(text);
        EXPECT_THAT(test::told_by(ColourConfig::load),
                    HasSubstr(file("c.ocio") + ": the colour configuration that $OCIO names"))
            << text;
    }
}

TEST(ColourConversion, MultipliedColourIsDividedFirst) {
    const ColourConversion to_light = ColourConfig::built_in().between("sRGB", "linear");
    const std::array<float, 4> alphas{0.0f, 0.5f, 1.0f, 2.0f};
    const auto value = [&](Channel c, int x, int) {
        return c == kAlpha ? alphas[static_cast<std::size_t>(x)] : c == kGreen ? 0.25f : 0.5f;
    };
    for (const AlphaIs alpha : {AlphaIs::kApart, AlphaIs::kMultiplied}) {
        Image image = test::image_of({0, 0, 4, 40}, {0, 0, 4, 40}, kMaskRgba, value);
        image.plane(kBlue) = image.plane(kRed);  // as grey files share them
        convert(image, to_light, alpha);
        const bool divided = alpha == AlphaIs::kMultiplied;
        for (int x = 0; x < 4; ++x) {
            EXPECT_EQ(image.line(kAlpha, 39)[x], alphas[static_cast<std::size_t>(x)]);
            EXPECT_NEAR(image.line(kRed, 39)[x], divided && x == 1 ? 0.5f : 0.2140411f, 1e-6);
            EXPECT_NEAR(image.line(kBlue, 39)[x], divided && x == 1 ? 0.5f : 0.2140411f, 1e-6);
            EXPECT_NEAR(image.line(kGreen, 39)[x], divided && x == 1 ? 0.5f * 0.2140411f : 0.0508761f, 1e-6);
        }
    }
}

}  // namespace
