// A session as a window uses it: shots, edits, undo, strokes, files that change.
#include "viewer/session/SessionRig.h"

#include <fstream>
#include <random>

#include "ZoImage/KnobValues.h"
#include "render/Pictures.h"
#include "session/Project.h"

namespace test {
namespace {

using testing::Contains;
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

// Edits that a user can make, by number.
void act(Session& session, std::mt19937& random) {
    const auto& knobs = session.panel().knobs();
    const auto any = [&](std::size_t count) { return static_cast<std::size_t>(random() % count); };
    Knob& knob = *knobs[any(knobs.size())];
    switch (any(8)) {
        case 0:
            return session.reset(knob);
        case 1:
            if (knob.kind() == Knob::Kind::kScriptButton ||
                (knob.kind() == Knob::Kind::kButton && !knob.flag(kKnobLooks)))
                session.press(knob);
            return;
        case 2:
            return static_cast<void>(any(2) == 0 ? session.undo() : session.redo());
        case 3: {
            DrawnMattes mattes = session.mattes();
            mattes.push_back({any(2) == 0 ? DrawnMatte::Kind::kGarbage : DrawnMatte::Kind::kHoldout,
                              any(2) == 0,
                              3.5,
                              {{{0.1, 0}, {static_cast<double>(any(160)), 5}, {20, 90}}}});
            return session.set_mattes(mattes, "draw");
        }
        case 4:
            session.begin_edit("drag");
            for (int n = 0; n < 3; ++n) session.set(knob, static_cast<double>(any(1000)) / 7.0);
            return session.end_edit();
        case 5: {
            ShotFiles files = session.files();
            files.inputs[kBg] = any(2) == 0 ? "" : files.inputs[kFg];
            return session.set_files(files, "background");
        }
        default:
            return session.set(knob, static_cast<double>(any(100)) / 3.0, static_cast<int>(any(4)));
    }
}

TEST_F(SessionRig, UndoAndRedoGiveBackTheSameScripts) {
    make_plates(1, 40, 30);
    Session session(place());
    open(session, 1);
    std::mt19937 random(14);
    std::vector<std::string> scripts{session.script(file("s"))};
    const std::string first = scripts.front();
    std::vector<std::string> after;
    for (int n = 0; n < 200; ++n) act(session, random);
    while (session.redo()) {
    }
    after.push_back(session.script(file("s")));
    while (session.undo()) after.push_back(session.script(file("s")));
    EXPECT_EQ(after.back(), first);
    EXPECT_GT(after.size(), 40U);
    std::vector<std::string> forth{session.script(file("s"))};
    while (session.redo()) forth.push_back(session.script(file("s")));
    EXPECT_TRUE(std::ranges::equal(forth, std::vector(after.rbegin(), after.rend())));
    // A node that gets the script has what the session has.
    std::ofstream(file("s")) << forth.back();
    Node node;
    node.apply({file("s"), {}}, {});
    EXPECT_EQ(Settings(node.panel()), session.state().settings);
}

// Strokes one after another, as the command line's: each begins with what the one before left.
TEST_F(SessionRig, StrokesAndTheirUndoAreThoseOfTheCommandLine) {
    make_plates(1);
    Session session(place());
    open(session, 1);
    const std::vector<std::vector<Box>> paths{
        {{4, 70, 12, 80}, {20, 70, 26, 78}}, {{75, 30, 82, 36}}, {{6, 40, 14, 50}}};
    const char* const tools[] = {"addoverlay", "addmatte", "removenoise"};
    const auto stroke = [&](std::size_t n) {
        session.use_tool(session.panel().find(std::string("toolbar_") + tools[n]));
        session.move_stroke({paths[n].front()});
        session.end_stroke(paths[n]);
        ASSERT_TRUE(settle(session));
    };
    SetupOptions options = shot(1);
    for (std::size_t n = 0; n < 3; ++n) {
        stroke(n);
        // Taken back and painted again: what the tools remember is taken back, too.
        ASSERT_TRUE(session.undo());
        ASSERT_TRUE(settle(session));
        stroke(n);
        std::string text = std::string(tools[n]) + "=";
        for (const Box& b : paths[n]) {
            text += (text.back() == '=' ? "" : "+") + std::to_string(b.x) + "," + std::to_string(b.y) + "," +
                    std::to_string(b.r) + "," + std::to_string(b.t);
        }
        options.strokes.push_back(text);
        KeySetup setup(options, {});
        setup.prepare();
        EXPECT_TRUE(session.state().settings == Settings(setup.node().panel())) << tools[n];
        ASSERT_FALSE(reports_.empty());
        EXPECT_EQ(reports_.back().satisfied, setup.strokes().back().satisfied) << tools[n];
    }
    EXPECT_GT(reports_.back().satisfied, 0);

    // A stroke that is cancelled leaves nothing, one that comes before the picture is there waits for nobody.
    const Settings before = session.state().settings;
    session.use_tool(session.panel().find("toolbar_addmatte"));
    session.move_stroke({{10, 10, 20, 20}});
    session.cancel_stroke();
    ASSERT_TRUE(settle(session));
    EXPECT_TRUE(session.state().settings == before);
}

TEST_F(SessionRig, FilesThatChangeAreReadAgainAndThoseThatBreakAreNamed) {
    make_plates(2);
    Session session(place());
    open(session, 2);
    const std::vector<float> before = samples(*shown_.picture.image);
    const std::string path = file("fg.1.exr");
    const auto look_again = [&] {
        const int count = count_;
        messages_.clear();
        session.recheck();
        desk_.until([&] { return count_ > count; });
        settle(session);
    };
    plate::Options other;
    other.width = 90;
    other.height = 70;
    other.seed = 9;
    std::filesystem::remove(file("bg.1.exr"));
    write_plates(other, 1);  // another size
    look_again();
    EXPECT_EQ(shown_.picture.image->info.format.box, (Box{0, 0, 90, 70}));
    cut(path, 0.4);
    look_again();
    EXPECT_THAT(messages_, Contains(HasSubstr(path)));
    std::filesystem::remove(path);
    look_again();
    EXPECT_THAT(messages_, Contains(HasSubstr(path)));
    EXPECT_EQ(session.held_frames().front()->number, 1);
    EXPECT_THAT(session.held_frames().front()->error, HasSubstr(path));
    session.go_to(2);  // the others are as they were
    ASSERT_TRUE(settle(session));
    EXPECT_TRUE(shown_.error.empty());
    write_plates({.width = 160, .height = 96}, 1);
    session.go_to(1);
    ASSERT_TRUE(settle(session));
    look_again();
    ASSERT_EQ(shown_.error, "");
    EXPECT_EQ(samples(*shown_.picture.image), before);
}

TEST_F(SessionRig, AnOvertakenRenderIsAborted) {
    make_plates(1, 2400, 1500);  // else it may end: what takes no quarter of a second does
    Session session(place());
    open(session, 1);
    Sight sight = session.sight(0);
    sight.picture = kResult;
    session.set_sight(0, sight);
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
    // The same folder in the process that is killed, which runs this test from its beginning.
    const std::string own = testing::TempDir() + "rescue-of-killed" + std::to_string(::getpid());
    ::setenv("RESCUE_OF_KILLED", own.c_str(), 0);
    const std::string folder = std::getenv("RESCUE_OF_KILLED");
    const char* const kText = "Veloxa {\n    spill_cool 61\n}\n";
    EXPECT_EXIT(
        {
            std::filesystem::remove_all(folder_);  // nobody will when it is killed
            std::filesystem::remove_all(folder);
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
    ASSERT_TRUE(desk_.until([&] { return knob(session, "spill_cool").get_value() == 61.0; }));
    EXPECT_TRUE(session.modified());
    EXPECT_EQ(session.document(), "/a/b.veloxa");
    for (int n = 0; n < 1000 && !Autosave::left(folder).empty(); ++n)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(Autosave::left(folder).empty());
    std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace test
