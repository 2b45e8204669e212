// A session as a window uses it: shots, edits, renders that are overtaken, what killed ones left.
#include "viewer/session/SessionRig.h"

#include "session/Project.h"

namespace test {
namespace {

using testing::HasSubstr;

TEST_F(SessionRig, ShowsWhatTheCommandLineKeys) {
    make_plates(2);
    Session session(place());
    open(session, 2);
    session.set(session.panel().get("spill_cool"), 70.0);
    session.set_mattes({{DrawnMatte::Kind::kGarbage, false, 6.0, {{{0, 0}, {60, 5}, {20, 90}}}}}, "draw");
    session.go_to(2);
    ASSERT_TRUE(settle(session)) << shown_.error;
    std::string fault;
    session.save(file("shot.veloxa"),
                 [&](const std::string& error) { fault = error.empty() ? "none" : error; });
    ASSERT_TRUE(desk_.until([&] { return !fault.empty(); }));
    ASSERT_EQ(fault, "none");
    EXPECT_FALSE(session.modified());

    SetupOptions again = shot(2);
    again.settings.script = file("shot.veloxa");
    EXPECT_EQ(samples(*shown_.picture.image), samples(keyed(again, 2)));

    // Found again by another session, and by one whose script was moved away from its files.
    for (const std::string script : {"shot.veloxa", "moved/far/shot.veloxa"}) {
        std::filesystem::create_directories(std::filesystem::path(file(script)).parent_path());
        if (script != "shot.veloxa") std::filesystem::copy(file("shot.veloxa"), file(script));
        Session other(place());
        listen(other);
        other.open_project(file(script));
        ASSERT_TRUE(desk_.until([&] { return !other.files().inputs[kFg].empty(); }));
        EXPECT_EQ(other.files().inputs[kFg], file("fg.#.exr"));
        EXPECT_EQ(other.script(file("x")), session.script(file("x")));
    }
}

TEST(Project, HoldsAnyName) {
    Node node;
    State state;
    state.settings = Settings(node.panel());
    state.files.inputs = {"/a b/%41\"{}#\n.%04d.exr#layer=x", "/c/d.exr", "", "",
                          "/e/f.exr#channel=R,invert"};
    state.files.frames = "1-9x2";
    state.files.colour.in_space = "ACEScg";
    EXPECT_TRUE(project_files(project_text(state, node.panel(), "/g/h.veloxa"), "/g/h.veloxa") ==
                state.files);
    EXPECT_THAT(told_by([] { project_files("Shot {\n fg \"/a\"\n frame 3\n}\n", "x"); }),
                HasSubstr("x:3: 'frame'"));
}

TEST_F(SessionRig, AnOvertakenRenderIsAborted) {
    make_plates(1, 2400, 1500);  // else it may end: what takes no quarter of a second does
    Session session(place());
    open(session, 1);
    const auto aborted = [&] { return session.view_stats().aborted; };
    session.set(session.panel().get("unmix_method"), 1.0);  // the slowest
    // Where the worker is when it is overtaken depends on the machine.
    for (int n = 0; n < 300 && aborted() == 0; ++n) {
        session.set(session.panel().get("unmix_detail"), 1.0 + n / 500.0);
        std::this_thread::sleep_for(std::chrono::milliseconds(7 * n % 200));
        if (n % 5 == 0) {
            ASSERT_TRUE(settle(session));
        }
    }
    EXPECT_GT(aborted(), 0);
    ASSERT_TRUE(settle(session));
    SetupOptions options = shot(1);
    session.save(file("s.veloxa"), [](const std::string&) {});
    ASSERT_TRUE(desk_.until([&] { return !session.modified(); }));
    options.settings.script = file("s.veloxa");
    EXPECT_EQ(samples(*shown_.picture.image), samples(keyed(options, 1)));
}

// Each turn of the knob overtakes the one before, long before its picture is there.
TEST_F(SessionRig, ASliderThatNeverRestsIsFollowed) {
    make_plates(1, 1500, 900);
    Session session(place());
    open(session, 1);
    session.set(session.panel().get("unmix_method"), 1.0);
    ASSERT_TRUE(settle(session));
    const int before = count_;
    int n = 0;
    const bool followed = desk_.until([&] {
        session.set(session.panel().get("unmix_detail"), 1.0 + ++n / 50000.0);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        desk_.post([] {});
        return count_ >= before + 3;
    });
    EXPECT_TRUE(followed);
}

TEST_F(SessionRig, WhatAKilledSessionLeftIsOffered) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // The same folder in the process that is killed, which runs this test from its beginning. It goes with
    // the fixture's, after the threads that use it.
    ::setenv("RESCUE_OF_KILLED", file("rescue").c_str(), 0);
    const std::string folder = std::getenv("RESCUE_OF_KILLED");
    const char* const kText = "Veloxa {\n    spill_cool 61\n}\n";
    EXPECT_EXIT(
        {
            std::filesystem::remove_all(folder_);  // nobody will when it is killed
            Autosave autosave(folder);
            autosave.keep([&] { return RescueText{kText, {}}; }, "/a/b.veloxa");
            autosave.flush();
            ::raise(SIGKILL);
        },
        testing::KilledBySignal(SIGKILL), "");
    Autosave living(folder);
    living.keep([&] { return RescueText{kText, {}}; }, "");
    living.flush();
    std::vector<Rescued> left = Autosave::left(folder);
    ASSERT_EQ(left.size(), 1U);
    EXPECT_EQ(left[0].document, "/a/b.veloxa");
    Session session(place());
    listen(session);
    session.rescue(left[0]);
    ASSERT_TRUE(desk_.until([&] { return session.panel().get("spill_cool").get_value() == 61.0; }));
    EXPECT_TRUE(session.modified());
    EXPECT_EQ(session.document(), "/a/b.veloxa");
    for (int n = 0; n < 12000 && !Autosave::left(folder).empty(); ++n)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(Autosave::left(folder).empty());
}

}  // namespace
}  // namespace test
