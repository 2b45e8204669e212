// Strokes, buttons, picks and polygons in the window, against what the command line makes of the same.
#include "shot/setup/KeySetup.h"
#include "viewer_ui/window/WindowRig.h"

namespace test {
namespace {

struct ToolRow {
    const char* tool;
    std::vector<Point> path;
    const char* picture;     // the command for what is shown while one paints
    const char* needs = "";  // a switch, without which the tool has nothing to turn
};

// Backing at the left and above, the figure in the middle, its edges beside it.
const std::vector<ToolRow> kTools{
    {"toolbar_screen", {{12, 80}}, "picture matte"},
    {"toolbar_addoverlay", {{10, 70}, {30, 72}}, "picture matte"},
    {"toolbar_removeoverlay", {{10, 70}, {30, 72}}, "picture result"},
    {"toolbar_addmatte", {{76, 20}, {84, 34}}, "picture matte"},
    {"toolbar_removenoise", {{12, 30}, {12, 60}}, "picture status"},
    {"toolbar_restorespill", {{76, 30}, {84, 30}}, "picture result"},
    {"toolbar_removespill", {{60, 40}, {66, 60}}, "picture result"},
    {"toolbar_matchcolor", {{78, 30}, {84, 36}}, "picture plate"},
    {"toolbar_matchshadow", {{30, 8}, {50, 8}}, "picture background"},
    {"toolbar_holdShadow", {{30, 8}, {50, 8}}, "picture matte", "cleanup"},
    {"toolbar_restoreDetail", {{30, 8}, {50, 8}}, "picture result", "cleanup"},
    {"toolbar_unmixbacking", {{10, 70}, {30, 72}}, "picture matte"},
    {"toolbar_unmixsolid", {{76, 20}, {84, 34}}, "picture subject"},
    {"toolbar_unmixseethrough", {{60, 40}, {66, 60}}, "picture result"},
    {"toolbar_unmixown", {{76, 30}, {84, 30}}, "picture result"},
};

std::string stroke_text(const char* tool, const std::vector<Box>& areas) {
    std::string text;
    for (const Box& b : areas) {
        text += (text.empty() ? std::string(tool) + "=" : "+") + std::to_string(b.x) + "," +
                std::to_string(b.y) + "," + std::to_string(b.r) + "," + std::to_string(b.t);
    }
    return text;
}

TEST_F(WindowRig, EveryToolDoesWhatTheCommandLineDoes) {
    open_window(1);
    std::vector<Box> areas;
    QObject::connect(&area(), &PictureArea::strokeEnded, window_.get(),
                     [&](const std::vector<Box>& ended) { areas = ended; });
    int tools = 0;
    for (const auto& knob : session().panel().knobs()) tools += knob->kind() == Knob::Kind::kToolButton;
    EXPECT_EQ(tools, static_cast<int>(kTools.size()));
    for (const ToolRow& row : kTools) {
        SCOPED_TRACE(row.tool);
        SetupOptions options = shot(1);
        if (*row.needs != 0) {
            options.settings.sets = {std::string(row.needs) + "=1"};
            session().set(panel_knob(row.needs), 1.0);
        }
        const Settings before = session().state().settings;
        const std::string step = session().history().undo_name();
        command(row.picture);
        take_tool(row.tool);
        areas.clear();
        reports_.clear();
        area().set_brush_size(7);
        paint(row.path);
        ASSERT_TRUE(settled()) << shown_.error;
        ASSERT_FALSE(areas.empty());

        options.strokes = {stroke_text(row.tool, areas)};
        const ToolReport report = expect_set_up(session(), options);
        EXPECT_FALSE(session().state().settings == before) << "nothing was turned";

        auto* const table = accessible<QTableWidget>("What tools changed");
        ASSERT_NE(table, nullptr);
        ASSERT_EQ(table->rowCount(), 1);
        EXPECT_EQ(table->item(0, 0)->text().toStdString(), report.tool);
        EXPECT_EQ(table->item(0, 3)->text().toInt(), report.satisfied);
        EXPECT_EQ(table->item(0, 6)->text().isEmpty(), report.changes.empty());

        command("undo");
        EXPECT_TRUE(session().state().settings == before);
        EXPECT_EQ(session().history().undo_name(), step) << "not one step";
        if (*row.needs != 0) command("undo");
        ASSERT_TRUE(settled());
    }

    // What turns nothing is remembered all the same, so it is a step too.
    const Settings before = session().state().settings;
    take_tool("toolbar_holdShadow");
    paint({{30, 8}, {50, 8}});
    ASSERT_TRUE(settled());
    EXPECT_TRUE(session().state().settings == before);
    EXPECT_TRUE(session().undo());

    // These look at the background as well: without one they come to something else.
    for (const char* const tool : {"toolbar_matchcolor", "toolbar_matchshadow"}) {
        const auto outcome = [&] {
            take_tool(tool);
            paint({{78, 30}, {84, 36}});
            EXPECT_TRUE(settled());
            const Settings after = session().state().settings;
            command("undo");
            return after;
        };
        const Settings with = outcome();
        command("close_others");
        ASSERT_TRUE(settled());
        EXPECT_FALSE(outcome() == with) << tool;
        command("undo");
        ASSERT_TRUE(settled());
        EXPECT_EQ(session().files().inputs[kBg], file("bg.#.exr"));
    }
}

// Each begins with what the one before left, and remembers nothing of one that was taken back.
TEST_F(WindowRig, StrokesOneAfterAnotherDoWhatTheCommandLineDoes) {
    open_window(1);
    const std::pair<const char*, std::vector<Box>> strokes[]{
        {"toolbar_addoverlay", {{4, 70, 12, 80}, {20, 70, 26, 78}}},
        {"toolbar_addmatte", {{75, 30, 82, 36}}},
        {"toolbar_removenoise", {{6, 40, 14, 50}}},
    };
    SetupOptions options = shot(1);
    for (const auto& [tool, areas] : strokes) {
        options.strokes.push_back(stroke_text(tool, areas));
        take_tool(tool);
        for (const bool again : {false, true}) {
            if (again) session().undo();
            session().end_stroke(areas);
            ASSERT_TRUE(settled());
            ASSERT_FALSE(reports_.empty());
            const ToolReport report = expect_set_up(session(), options);
            EXPECT_EQ(reports_.back().satisfied, report.satisfied) << tool;
        }
    }
}

TEST_F(WindowRig, ButtonsThatLookDoWhatTheCommandLineDoes) {
    open_window(1);
    const Settings before = session().state().settings;
    for (const bool automatic : {false, true}) {
        if (!automatic) session().set(panel_knob("screen_color"), 0.9);
        const Settings turned = session().state().settings;
        session().press(panel_knob(automatic ? "set_up" : "find_screen"));
        ASSERT_TRUE(settled());
        SetupOptions options = shot(1);
        options.automatic = automatic;
        if (!automatic) options.screen.screen = "auto";
        expect_set_up(session(), options);
        EXPECT_FALSE(session().state().settings == turned);
        command("undo");
        EXPECT_TRUE(session().state().settings == turned);
        if (!automatic) command("undo");
        EXPECT_TRUE(session().state().settings == before);
    }
}

TEST_F(WindowRig, EscapeGivesUpTheStrokeThenTheTool) {
    open_window(1);
    const Settings before = session().state().settings;
    take_tool("toolbar_addmatte");
    area().setFocus();
    press({70, 20});
    move({84, 34});
    key(Qt::Key_Escape);
    release({84, 34});
    ASSERT_TRUE(settled());
    EXPECT_TRUE(session().state().settings == before);
    ASSERT_NE(session().tool(), nullptr) << "the tool went with the stroke";
    key(Qt::Key_Escape);
    EXPECT_EQ(session().tool(), nullptr);
    EXPECT_EQ(area().tool(), PointerTool::kNavigate);
    // What was painted before it was taken back late is not put back by what comes from the worker.
    take_tool("toolbar_addmatte");
    for (int n = 0; n < 2; ++n) {
        session().end_stroke({{70, 20, 90, 40}});
        session().undo();
    }
    session().end_stroke({{8, 20, 14, 40}});
    ASSERT_TRUE(settled());
    SetupOptions options = shot(1);
    options.strokes = {"toolbar_addmatte=8,20,14,40"};
    expect_set_up(session(), options);
}

TEST_F(WindowRig, AStrokeThatCannotBeUsedLeavesNoPreview) {
    open_window(1);
    take_tool("toolbar_addmatte");
    const std::vector<float> before = samples(*shown_.picture.image);
    press({76, 20});
    move({84, 34});
    const auto request = session().latest_request();
    ASSERT_TRUE(until([&] { return session().latest_request() > request; })) << "no preview";
    const auto failed = [&] {
        return std::ranges::any_of(session().held_frames(),
                                   [](const FramePtr& f) { return !f->error.empty(); });
    };
    std::filesystem::rename(file("fg.1.exr"), file("kept.exr"));
    ASSERT_TRUE(until(failed));
    release({84, 34});
    std::filesystem::rename(file("kept.exr"), file("fg.1.exr"));
    ASSERT_TRUE(until([&] { return !failed(); }));
    ASSERT_TRUE(settled());
    EXPECT_EQ(samples(*shown_.picture.image), before);
}

TEST_F(WindowRig, AColourIsPickedFromThePlateAsItIsStored) {
    open_window(1);
    int colours = 0;
    for (const auto& knob : session().panel().knobs()) {
        if (knob->kind() != Knob::Kind::kColor || !knob->visible() || !knob->enabled()) continue;
        SCOPED_TRACE(knob->name());
        const Settings before = session().state().settings;
        const int x = 20 + 5 * ++colours;
        session().pick_colour(knob.get());
        click({x + 0.5, 40.5});
        const veloxa::Image& plate = *session().current_frame()->inputs[kFg].image;
        const Channel channels[] = {kRed, kGreen, kBlue};
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(static_cast<float>(knob->get_value(i)), plate.line(channels[i], 40)[x]);
        EXPECT_EQ(session().picking(), nullptr);
        command("undo");
        EXPECT_TRUE(session().state().settings == before);
    }
    EXPECT_GT(colours, 2);
}

TEST_F(WindowRig, PolygonsAreDrawnSavedAndTakenBack) {
    open_window(1);
    command("mode_garbage");
    for (const Point& point : {Point{10, 10}, Point{60, 12}, Point{30, 80}, Point{10, 10}}) click(point);
    command("mode_holdout");
    for (const Point& point : {Point{110, 20}, Point{150, 20}, Point{130, 70}}) click(point);
    area().setFocus();
    key(Qt::Key_Return);
    using Kind = DrawnMatte::Kind;
    ASSERT_EQ(session().mattes().size(), 2U);
    EXPECT_EQ(session().mattes()[0].kind, Kind::kGarbage);
    EXPECT_EQ(session().mattes()[1].kind, Kind::kHoldout);
    EXPECT_NEAR(session().mattes()[0].points[1][0], 60.0, 0.5);
    EXPECT_NEAR(session().mattes()[1].points[2][1], 70.0, 0.5);
    std::vector<std::string> scripts{mattes_script(session().mattes())};
    for (const char* const name : {"feather_more", "feather_more", "feather_less", "matte_outside"}) {
        command(name);
        scripts.push_back(mattes_script(session().mattes()));
        EXPECT_NE(scripts[scripts.size() - 2], scripts.back()) << name;
    }
    EXPECT_EQ(session().mattes()[1].feather, 2.0);
    expect_shown_as_keyed();
    for (; !scripts.empty(); scripts.pop_back()) {
        EXPECT_EQ(mattes_script(session().mattes()), scripts.back());
        command("undo");
    }
    EXPECT_EQ(session().mattes().size(), 1U);
    command("undo");
    EXPECT_TRUE(session().mattes().empty());
}

}  // namespace
}  // namespace test
