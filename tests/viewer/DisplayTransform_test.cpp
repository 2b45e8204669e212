#include "picture/DisplayTransform.h"

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "shot/Files.h"

using namespace veloxa;
using namespace veloxa::viewer;
using testing::HasSubstr;

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

std::vector<float> many_values() {
    std::vector<float> values{0.0f, -0.0f, 1.0f, kInfinity, -kInfinity, std::nanf("")};
    values.push_back(std::bit_cast<float>(0x7f800001U));  // NaN in its lower half alone
    for (std::uint32_t half = 0; half < 0x7c00U; half += 3) {
        const auto v = std::ldexp(static_cast<float>(half < 0x400U ? half : 0x400U | (half & 0x3ffU)),
                                  static_cast<int>(std::max(half >> 10U, 1U)) - 25);
        values.push_back(v);
        values.push_back(-v);
    }
    std::mt19937 random(3);
    for (int n = 0; n < 20000; ++n)
        values.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(random())));
    return values;
}

TEST(DisplayTransform, TablesShowWhatTheConversionShows) {
    const auto config = ColourConfig::built_in();
    const auto values = many_values();
    const struct {
        const char *from, *display, *view;
        bool apart;
    } rows[] = {
        {"linear", "sRGB", "plain", true},      {"sRGB", "sRGB", "plain", true},
        {"film-log", "sRGB", "plain", true},    {"linear", "", "film-log", true},
        {"sRGB", "", "linear", true},           {"linear", "Rec.709", "plain", true},
        {"linear", "Rec.2020", "plain", false}, {"ACEScg", "sRGB", "plain", false},
    };
    for (const auto& row : rows) {
        const DisplayTransform display = display_transform(config, row.from, {row.display, row.view, ""});
        ASSERT_EQ(display.channels() != nullptr, row.apart) << row.from << " " << row.display << row.view;
        ASSERT_NE(display.grey(), nullptr);
        const LevelTable table(*display.grey());
        std::vector<std::uint32_t> shown(values.size());
        table.grey(values.data(), values.size(), shown.data());
        for (std::size_t n = 0; n < values.size(); ++n) {
            const float v = std::clamp(values[n], -1e30f, 1e30f);  // matrices make NaN of infinity
            float rgba[]{v, v, v, 1.0f};
            display.apply(rgba, 1);
            EXPECT_EQ(shown[n] & 0xffU, level_of(rgba[1])) << values[n] << " " << row.from << row.display;
        }
    }
}

// A curve too steep for one step a table entry, and one that falls.
TEST(DisplayTransform, CurvesAreFoundWhereThereAreAny) {
    const auto steep = [](float v) { return std::pow(v, 9.0f); };
    const auto as_levels = [](auto function) {
        return [function](std::span<const float> values, std::span<std::uint8_t> levels) {
            for (std::size_t n = 0; n < values.size(); ++n) levels[n] = level_of(function(values[n]));
        };
    };
    const auto curve = measure(as_levels(steep));
    ASSERT_TRUE(curve);
    const LevelTable table(*curve);
    for (float v = 0.0f; v < 1.1f; v += 0.0001f) {
        std::uint32_t grey = 0, colour = 0;
        table.grey(&v, 1, &grey);
        LevelTable::colour({&table, &table, &table}, {&v, &v, &v}, 1, &colour);
        EXPECT_EQ(grey & 0xffU, level_of(steep(v))) << v;
        EXPECT_EQ(colour, grey) << v;
    }
    EXPECT_FALSE(measure(as_levels([](float v) { return v < 0.5f ? v : 1.0f - v; })));
}

TEST(DisplayTransform, ChoicesAreWhatTheConfigurationHas) {
    std::vector<std::string> labels;
    const auto own = display_choices(ColourConfig::built_in());
    for (const DisplayChoice& choice : own) {
        labels.push_back(choice.label);
        EXPECT_NO_THROW(display_transform(ColourConfig::built_in(), "srgb_tx", choice)) << choice.label;
    }
    EXPECT_THAT(labels, testing::ElementsAre("sRGB", "Rec.709", "Display-P3", "Rec.2020", "Linear light",
                                             "Film logarithm"));
    EXPECT_FALSE(display_transform(ColourConfig::built_in(), "", own.front()).changes());
    EXPECT_THAT(test::told_by([&] { display_transform(ColourConfig::built_in(), "sRGBB", own.front()); }),
                HasSubstr("no such colour space"));
}

TEST(DisplayTransform, InputsAreTakenForWhatTheirFilesSay) {
    const auto config = ColourConfig::built_in();
    Header header(4, 4, 3, OIIO::TypeDesc::UINT8);
    const InputSpace whole = input_space(config, header, "a.png");
    EXPECT_EQ(whole.name, "sRGB");
    EXPECT_EQ(whole.why, "uint8 without a linear tag, not sure");
    EXPECT_EQ(input_space(config, header, "a.dpx").name, "film-log");
    EXPECT_EQ(input_space(config, header, "a.exr").name, "linear");
    header.attribute("veloxa:space", "of another show");
    const InputSpace unknown = input_space(config, header, "a.png");
    EXPECT_EQ(unknown.name, "");
    EXPECT_THAT(unknown.why, HasSubstr("of another show (uint8, tagged of another show), which the colour"));
}

}  // namespace
