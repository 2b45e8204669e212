// Models as text and back, what is wrong with bad ones, and frames joined, against values worked out by hand.
#include <gtest/gtest.h>

#include "unmix/ShotModel.h"

namespace {

ShotModel frame() {
    ShotModel model;
    model.frames = model.spill_frames = 1;
    model.width = 8;
    model.height = 4;
    model.screen = 2;
    model.encoding = Encoding::kSrgb;
    model.sigma = {0.1, 1.0 / 3.0, 5e-324};
    model.spill = 0.25;
    model.rims = {{2.0, {0.5, 0.25, 1.0}, {0.5, 0.0, 0.0, 0.0, 0.0, 0.0}}};
    model.hue = {{7, 3.0}};
    model.own = {{29279, 0.125}};
    return model;
}

TEST(ShotModel, TextReadsBackToTheSameBits) {
    ShotModel model;
    EXPECT_EQ(read_shot_model(frame().text(), model), "");
    EXPECT_EQ(model.text(), frame().text());
    EXPECT_EQ(model.sigma, frame().sigma);
    EXPECT_EQ(model.encoding, Encoding::kSrgb);
    EXPECT_EQ(model.own, frame().own);
}

TEST(ShotModel, BadTextsAreToldByLine) {
    const struct {
        const char *line, *instead, *fault;  // with no line it goes to the end
    } cases[] = {
        {"veloxa-shot 1", "veloxa-shot 2", "line 1: 'veloxa-shot 1' is expected; got 'veloxa-shot 2'"},
        {"screen blue", "screen teal", "line 3: one of red, green, blue is expected; got 'screen teal'"},
        {"frames 1", "frames 0", "line 5: a whole number of 1 or more is expected; got 'frames 0'"},
        {"spill 0.25", "spill nan", "line 13: a finite number is expected; got 'spill nan'"},
        {"spill 0.25", "spill", "line 13: a finite number is expected; got 'spill'"},
        {"spill 0.25", "# spill", "line 21: 'spill' is expected; the text ends"},
        {"spill_frames 1", "spill_frames 2", "line 21: no more base_frames or spill_frames than frames"},
        {"hue 7 3", "hue 4096 3", "line 20: a new bin below 4096 and a number above 0 are expected"},
        {"hue 7 3", "hue 7 3\nhue 7 3", "line 21: a new bin"},
        {"rim 2 0.5", "rim 1 0.5", "line 18: a count of 2 or more and 9 finite numbers"},
        {"", "grain 1", "line 22: the name of something that a shot has is expected; got 'grain 1'"},
        {"", "width 9", "line 22: a name that no line before has is expected; got 'width 9'"},
    };
    for (const auto& c : cases) {
        std::string text = frame().text();
        const std::string line = c.line;
        const std::size_t at = line.empty() ? text.size() : text.find("\n" + line) + 1;
        text.replace(line == "veloxa-shot 1" ? 0 : at, line.size(), c.instead);
        ShotModel model;
        EXPECT_EQ(read_shot_model(text, model).substr(0, std::string(c.fault).size()), c.fault);
        EXPECT_EQ(model.frames, 0);
    }
}

TEST(ShotModel, FramesAreAveraged) {
    ShotModel other = frame();
    other.sigma = {0.3, 0.0, 0.0};
    other.spill = 0.0;
    other.spill_frames = 0;
    other.rims = {{3.0, {0.5, 0.25, 1.0}, {0.0, 0.0, 0.0, 0.0, 0.0, 0.0}},
                  {2.0, {0.5, 0.25, 0.0}, {0.0, 0.0, 0.0, 0.0, 0.0, 0.0}}};
    ShotModel model = frame();
    model.add(other);
    unmix::join_groups(model.rims, 2);
    EXPECT_EQ(model.frames, 2);
    EXPECT_FLOAT_EQ((*model.mean_sigma({8, 4}))[0], 0.2f);
    EXPECT_FALSE(model.mean_sigma({9, 4}));
    EXPECT_EQ(model.mean_spill(), 0.25f);  // the other has no solids
    EXPECT_FALSE(model.mean_base());
    EXPECT_EQ(model.own_counts()[29279], 0.125f);
    ASSERT_EQ(model.rims.size(), 2U);
    EXPECT_EQ(model.rims[0].count, 5.0);  // those alike
    EXPECT_EQ(model.rims[0].covariance[0], 0.125);
    unmix::join_groups(model.rims, 1);
    EXPECT_NEAR(model.rims[0].mean[2], 5.0 / 7.0, 1e-12);
    EXPECT_NEAR(model.rims[0].covariance[5], 10.0 / 7.0 / 6.0, 1e-12);  // of five ones and two zeros
}

}  // namespace
