// The time line in the window: every frame is shown, broken ones say why, other settings are found anew.
#include <QComboBox>

#include "viewer_ui/window/WindowRig.h"

namespace test {
namespace {

TEST_F(WindowRig, EveryFrameIsShownWhenSteppingAndPlaying) {
    open_window(5);
    auto* const strip = window_->findChild<FrameStrip*>();
    for (const char* const name : {"next", "next", "previous", "last", "first"}) {
        command(name);
        ASSERT_TRUE(settled());
        EXPECT_EQ(shown_.frame, session().frame()) << name;
        EXPECT_EQ(strip->current(), session().frame());
        EXPECT_TRUE(until([&] { return strip->state(session().frame()) == FrameState::kResult; })) << name;
        EXPECT_EQ(samples(*shown_.picture.image), samples(keyed(shot(5), session().frame()))) << name;
    }
    EXPECT_EQ(frames_, (std::vector{1, 2, 3, 2, 5, 1}));
    window_->time_line().set_looping(false);
    window_->time_line().set_frames_per_second(1000.0);
    session().set(panel_knob("spill_cool"), 44.0);  // nothing is keyed already
    ASSERT_TRUE(settled());
    frames_.clear();
    command("play");
    ASSERT_TRUE(until([&] { return !window_->time_line().playing(); }));
    ASSERT_TRUE(settled());
    EXPECT_EQ(frames_, (std::vector{2, 3, 4, 5}));
    EXPECT_FALSE(window_->commands()["play"].isChecked());

    const std::string path = file("fg.3.exr");
    std::filesystem::copy_file(path, file("whole.exr"));
    window_->time_line().go_to(3);
    ASSERT_TRUE(settled());
    cut(path, 0.4);  // which is looked after
    ASSERT_TRUE(until([&] { return strip->state(3) == FrameState::kFailed; }));
    EXPECT_TRUE(strip->description(3).contains("fg.3.exr"));
    EXPECT_TRUE(until([&] { return area().message().contains("fg.3.exr"); }));
    std::filesystem::copy_file(file("whole.exr"), path, std::filesystem::copy_options::overwrite_existing);
    command("reload");
    ASSERT_TRUE(settled());
    EXPECT_TRUE(area().message().isEmpty());
    EXPECT_EQ(session().frame(), 3);
    EXPECT_TRUE(until([&] { return strip->state(3) == FrameState::kResult; }));
}

// Settings to compare with belong to a shot: another one has others, and they are found again.
TEST_F(WindowRig, ComparedSettingsFollowTheShot) {
    make_plates(1);
    plate::Options blue{.width = 160, .height = 96};
    blue.screen = plate::Screen::kBlue;
    write_plates(blue, 2);
    make_window();
    command("layout_side");
    child<QComboBox>("second_settings")->setCurrentIndex(static_cast<int>(Against::kDefault));
    for (const char* const frame : {"1", "2"}) {
        SetupOptions options;
        options.inputs[kFg] = file("fg." + std::string(frame) + ".exr");
        session().open(options);
        ASSERT_TRUE(until([&] { return session().current_frame() && !session().working(); }));
        session().set(panel_knob("screen_color"), 0.0, 0);
        session().set(panel_knob("screen_color"), 0.5, 1);
        const std::vector<float> expected = samples(keyed(options, 0));
        ASSERT_TRUE(until([&] {
            const ShownPicture& other = window_->shown(1);
            return other.image && samples(*other.image) == expected;
        })) << frame;
    }
}

// What opens a shot is not lost when another input comes before it is set up.
TEST_F(WindowRig, AnInputThatComesEarlyLosesNothing) {
    make_plates(1);
    make_window();
    SetupOptions options;
    options.inputs[kFg] = file("fg.1.exr");
    session().open(options);
    session().open_input(kBg, file("bg.1.exr"));
    ASSERT_TRUE(until([&] { return !session().working(); }));
    expect_set_up(session(), options);
    session().open(options);
    session().give_up();
    EXPECT_TRUE(until([&] { return !session().working(); }));
}

}  // namespace
}  // namespace test
