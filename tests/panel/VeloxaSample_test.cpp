#include "panel/VeloxaSample_Knob.h"

#include <gtest/gtest.h>

#include <locale>
#include <sstream>

#include "ZoImage/Script.h"
#include "support/PanelOp.h"
#include "support/TestImages.h"

using namespace Zo::Image;

namespace {

std::string text(const VeloxaSample& samples, bool quote) {
    std::ostringstream out;
    samples.write(out, quote);
    return out.str();
}

VeloxaSample::Sample gray(int level) {
    const auto v = static_cast<float>(level);
    return {v, v, v, v};
}

TEST(VeloxaSample, KeepsTheLatestHundredAndAPointOnceAPixel) {
    VeloxaSample samples(nullptr);
    samples.append(gray(1));
    EXPECT_EQ(samples.add_point(gray(2), 5, 5, 5, 9), 0);
    EXPECT_EQ(samples.add_point(gray(2), 5, 9, 7, 5), 0);
    EXPECT_EQ(samples.count(), 1);
    EXPECT_EQ(samples.add_point(gray(2), -1, 0, 2, 2), 1);
    EXPECT_EQ(samples.count(), 7);
    for (int i = 1; i <= 99; ++i) samples.append(gray(i));
    ASSERT_EQ(samples.count(), 100);  // the oldest six went
    EXPECT_EQ(samples.samples().front(), gray(2));
    EXPECT_EQ(samples.samples()[1], gray(1));
    EXPECT_EQ(samples.samples().back(), gray(99));
    EXPECT_EQ(samples.add_point(gray(3), 0, 0, 20, 10), 1);
    EXPECT_EQ(samples.samples().front(), gray(3));
    EXPECT_EQ(samples.add_point(gray(4), -2147483647, -2147483647, 2147483647, 2147483647), 1);
    EXPECT_EQ(samples.samples().front(), gray(4));
}

TEST(VeloxaSample, AnAreaIsItsMean) {
    test::FunctionSource image({0, 0, 8, 6}, kMaskRgba, [](Channel c, int x, int y) {
        return static_cast<float>(static_cast<int>(c) * 100 + x + 10 * y);
    });
    VeloxaSample samples(nullptr);
    EXPECT_EQ(samples.add_area(image, 3, 2, 3, 4), 0);
    EXPECT_EQ(samples.add_area(image, 2, 1, 6, 3), 1);  // columns 2 to 5, rows 1 and 2: 3.5 + 15
    ASSERT_EQ(samples.count(), 1);
    EXPECT_EQ(samples.samples()[0], (VeloxaSample::Sample{118.5f, 218.5f, 318.5f, 418.5f}));
}

TEST(VeloxaSample, AverageLeavesAlphaOut) {
    VeloxaSample samples(nullptr);
    EXPECT_EQ(samples.average(), gray(0));
    samples.append({0.0f, 1.0f, 2.0f, 9.0f});
    samples.append({1.0f, 4.0f, -1.0f, 9.0f});
    EXPECT_EQ(samples.average(), (VeloxaSample::Sample{0.5f, 2.5f, 0.5f, 0.0f}));
}

TEST(VeloxaSample, IsGroupsOfFourNumbersInText) {
    VeloxaSample samples(nullptr);
    EXPECT_EQ(text(samples, true), "{  }");
    samples.append({0.1f, 0.25f, 1.0f / 3.0f, 1e-9f});
    samples.append({1.0f, 2.0f, 3.0f, 4.0f});
    EXPECT_EQ(text(samples, true), "{ 0.1 0.25 0.333333 1e-09 1 2 3 4  }");
    const struct {
        const char* words;
        bool good;
        const char* after;
    } cases[] = {
        {"{ {1 2 3 4} {5 6 7 8} }", true, "1 2 3 4 5 6 7 8 "},
        {"1 2 3", false, "1 2 3 4 5 6 7 8 "},  // the list stays
        {"1 2 3 4 5 6 7 x", false, "1 2 3 4 "},
        {"{ }", true, ""},
        {"1e300 -1e300 inf 0", true, "inf -inf inf 0 "},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(samples.read(c.words), c.good) << c.words;
        EXPECT_EQ(text(samples, false), c.after) << c.words;
    }
}

struct CommaPoint : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
};

TEST(VeloxaSample_Knob, LivesInScriptsAndUndo) {
    test::PanelOp op;
    KnobPanel panel(op);
    VeloxaSample_Knob& knob = *op.refs.samples(SampleAction::kRemoveOverlay);
    EXPECT_STREQ(knob.class_name(), "VeloxaSample_Knob");
    EXPECT_EQ(knob.owner(), &op);
    EXPECT_FALSE(knob.differs_from_default());
    const Hash before = op.hash();
    knob.add_point({0.5f, 0.25f, 0.0f, 1.0f}, 0, 0, 1, 2);
    EXPECT_NE(op.hash(), before);

    const std::locale usual = std::locale::global(std::locale(std::locale::classic(), new CommaPoint));
    const std::string script = write_script(panel);
    std::locale::global(usual);
    EXPECT_EQ(script, "Veloxa {\n    us_remove_ovelray { 0.5 0.25 0 1 0.5 0.25 0 1  }\n}\n");

    EXPECT_THROW(panel.set_from_text("us_remove_ovelray", "1 2 3 x"), KnobError);
    EXPECT_EQ(knob.count(), 2);
    EXPECT_TRUE(panel.undo());
    EXPECT_EQ(knob.count(), 0);
    apply_script(panel, read_script(script, "s").at(0), "s");
    EXPECT_EQ(knob.count(), 2);
}

TEST(VeloxaSample, Decimation) {
    const struct {
        int box[4];
        int step_x, step_y, result;
    } cases[] = {
        {{0, 0, 100, 100}, 1, 1, 10000}, {{5, 5, 5, 9}, 1, 1, 0}, {{0, 0, 200, 100}, 1, 2, 50},
        {{10, 20, 210, 220}, 2, 2, 100},  // 200 x 100 after y, 100 x 100 after x
        {{0, 0, 32772, 1}, 3, 1, 10924},  // 16386 columns at step 2 are one too many
        {{0, 0, 1, 40000}, 1, 3, 13334},
    };
    for (const auto& c : cases) {
        int step_x = 9;
        int step_y = 9;
        EXPECT_EQ(decimate(c.box[0], c.box[1], c.box[2], c.box[3], step_x, step_y), c.result);
        EXPECT_EQ(step_x, c.step_x) << c.box[2];
        EXPECT_EQ(step_y, c.step_y) << c.box[2];
    }
}

}  // namespace
