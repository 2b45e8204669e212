// Opening, saving, closing, restoring, rendering in the window.
#include "shot/sequence/KeyPipeline.h"  // before Qt, whose macros it knows nothing of

#include <QCheckBox>
#include <QDockWidget>
#include <QLineEdit>
#include <QMenu>
#include <fstream>

#include "panel/NumberField.h"
#include "viewer_ui/window/WindowRig.h"
#include "window/RenderDialog.h"

namespace test {
namespace {

using testing::HasSubstr;

TEST_F(WindowRig, SavesAsksBeforeClosingAndRemembers) {
    open_window(1);
    EXPECT_FALSE(window_->isWindowModified());
    session().set(panel_knob("spill_cool"), 70.0);
    EXPECT_TRUE(window_->isWindowModified());
    save_as(file("a.veloxa"));
    EXPECT_FALSE(window_->isWindowModified());
    EXPECT_THAT(window_->windowTitle().toStdString(), HasSubstr(file("a.veloxa")));
    command("undo");
    EXPECT_TRUE(window_->isWindowModified());

    window_->close();
    EXPECT_TRUE(window_->isVisible());
    answer("unsaved", QMessageBox::Cancel);
    EXPECT_TRUE(window_->isVisible());
    auto* const panel = child<QDockWidget>("knobs_dock");
    panel->setFloating(true);
    window_->resize(870, 650);
    window_->close();
    answer("unsaved", QMessageBox::Save);
    ASSERT_TRUE(until([&] { return !window_->isVisible(); }));
    Node node;
    node.apply({file("a.veloxa"), {}}, {});
    EXPECT_EQ(node.panel().get("spill_cool").get_value(), panel_knob("spill_cool").get_value());

    window_.reset();
    make_window();
    EXPECT_TRUE(child<QDockWidget>("knobs_dock")->isFloating());
    auto* const recent = window_->commands().menu("&File").actions()[1]->menu();
    ASSERT_NE(recent, nullptr);
    ASSERT_FALSE(recent->isEmpty());
    EXPECT_EQ(recent->actions().front()->text().toStdString(), file("a.veloxa"));
    recent->actions().front()->trigger();
    ASSERT_TRUE(until([&] { return session().document() == file("a.veloxa"); }));
    ASSERT_TRUE(settled());
    session().set(panel_knob("spill_cool"), 33.0);
    window_->close();
    answer("unsaved", QMessageBox::Discard);
    EXPECT_FALSE(window_->isVisible());
}

// With a field that is being typed in, and a colour that is being chosen, the window goes in order.
TEST_F(WindowRig, GoesWhileSomethingIsTyped) {
    open_window(1);
    auto* const field = window_->findChild<NumberField*>();
    ASSERT_NE(field, nullptr);
    field->setFocus();
    QTest::keyClicks(field, "1234");
    session().move_stroke({{10, 10, 20, 20}});
    window_->jobs().find_worst(session().state(), 1, {});
    window_.reset();
    EXPECT_TRUE(Autosave::left(file("rescue")).empty());
}

TEST_F(WindowRig, InputsOfAnotherSizeAreScaledWhenItIsAskedFor) {
    open_window(1);
    write_plates({.width = 30, .height = 20}, 2);
    std::filesystem::rename(file("bg.2.exr"), file("small.exr"));
    session().open_input(kBg, file("small.exr"));
    ASSERT_TRUE(until([&] { return session().files().inputs[kBg] == file("small.exr"); }));
    ASSERT_TRUE(settled());
    EXPECT_THAT(area().message().toStdString(), HasSubstr("small.exr: is 30x20"));
    command("fit_resize");
    ASSERT_TRUE(settled());
    EXPECT_TRUE(area().message().isEmpty()) << area().message().toStdString();
    expect_shown_as_keyed();
    command("undo");
    ASSERT_TRUE(settled());
    EXPECT_FALSE(area().message().isEmpty());
    EXPECT_TRUE(window_->commands()["fit_refuse"].isChecked());
}

TEST_F(WindowRig, PicturesAreChosenByKeys) {
    open_window(1);
    for (const auto& [digit, picture] : {std::pair{Qt::Key_4, "status"}, {Qt::Key_6, "clean plate"}}) {
        area().setFocus();
        key(digit, Qt::AltModifier);
        EXPECT_EQ(session().sight(0).picture, picture);
        ASSERT_TRUE(settled());
    }
    EXPECT_EQ(area().message(), "there is no clean plate");
    command("layout_difference");
    ASSERT_TRUE(settled());
    EXPECT_EQ(area().message(), "there is no clean plate");
    command("picture result");
    ASSERT_TRUE(settled());
    EXPECT_TRUE(area().message().isEmpty());
}

TEST_F(WindowRig, WhatWasLeftIsOfferedDroppedFilesOpenAndBadOnesAreNamed) {
    make_plates(2);
    std::filesystem::create_directories(file("rescue"));
    for (const char* const n : {"1", "2"})
        std::ofstream(file("rescue/999999999-" + std::string(n) + ".veloxa"))
            << "# document /a/b.veloxa\nVeloxa {\n    spill_cool 6" << n << "\n}\n";
    for (const bool restored : {false, true}) {
        make_window();
        window_->offer_rescue();
        auto* const box = dialog<QMessageBox>("rescue");
        ASSERT_NE(box, nullptr);
        for (QAbstractButton* const button : box->buttons()) {
            const auto role = restored ? QMessageBox::AcceptRole : QMessageBox::DestructiveRole;
            if (box->buttonRole(button) == role) button->click();
        }
        if (!restored) window_.reset();
    }
    ASSERT_TRUE(until([&] { return session().document() == "/a/b.veloxa"; }));
    EXPECT_GT(panel_knob("spill_cool").get_value(), 60.0);
    EXPECT_TRUE(window_->isWindowModified());
    ASSERT_TRUE(until([&] { return Autosave::left(file("rescue")).empty(); }));

    const auto drop_file = [&](const char* name) {
        drop(area(), {QUrl::fromLocalFile(QString::fromStdString(file(name)))});
    };
    drop_file("fg.1.exr");
    answer("unsaved", QMessageBox::Discard);
    ASSERT_TRUE(until([&] { return session().files().inputs[kFg] == file("fg.#.exr"); }));
    EXPECT_EQ(session().files().frames, "1-2");
    ASSERT_TRUE(settled());
    EXPECT_TRUE(area().message().isEmpty());
    drop_file("bg.1.exr");  // onto a plate: one may choose what it is
    auto* const menu = dialog<QMenu>("open_as");
    ASSERT_NE(menu, nullptr);
    menu->actions()[2]->trigger();
    menu->close();
    ASSERT_TRUE(until([&] { return session().files().inputs[kBg] == file("bg.#.exr"); }));

    std::ofstream(file("bad.png")) << "no picture";
    session().open_file(file("bad.png"));
    ASSERT_TRUE(until([&] { return area().message().contains("bad.png"); }));
    ASSERT_TRUE(settled());  // what else is told of it would take the next line's place
    session().open_file(file("nothing.veloxa"));
    auto* const line = child<QLabel>("message");
    EXPECT_TRUE(until([&] { return line->text().contains("nothing.veloxa"); }));
}

TEST_F(WindowRig, RendersCancelsAndResumes) {
    open_window(2);
    constexpr int kFrames = 60;
    for (int n = 3; n <= kFrames; ++n) {
        for (const char* const name : {"fg.", "bg."})
            std::filesystem::copy_file(file(name + std::to_string(1 + n % 2) + ".exr"),
                                       file(name + std::to_string(n) + ".exr"));
    }
    session().set(panel_knob("spill_cool"), 40.0);
    session().set_mattes({{DrawnMatte::Kind::kGarbage, false, 6.0, {{{0, 0}, {60, 5}, {20, 90}}}}}, "draw");
    ShotFiles files = session().files();
    files.frames = "1-" + std::to_string(kFrames);
    session().set_files(files, "frames");
    ASSERT_TRUE(settled());
    save_as(file("shot.veloxa"));
    std::filesystem::create_directories(file("out"));
    const auto render = [&](bool resume) {
        command("render");
        auto* const box = dialog<RenderDialog>("render_dialog");
        box->findChild<QLineEdit*>("result")->setText(QString::fromStdString(file("out/key.#.exr")));
        box->findChild<QLineEdit*>("matte")->setText(QString::fromStdString(file("out/matte.#.exr")));
        for (auto* const check : box->findChildren<QCheckBox*>()) {
            if (check->text().contains("whole")) check->setChecked(resume);
        }
        box->accept();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    const auto count = [&] { return std::distance(std::filesystem::directory_iterator(file("out")), {}); };
    render(false);
    render(false);  // waits behind the first, and is given up with it
    ASSERT_TRUE(until([&] { return count() > 2; }));
    command("cancel_jobs");
    ASSERT_TRUE(until([&] { return !window_->jobs().running(); }));
    const auto cancelled = count();
    EXPECT_LT(cancelled, 2 * kFrames);
    for (const auto& entry : std::filesystem::directory_iterator(file("out"))) {
        EXPECT_NE(entry.path().filename().string().front(), '.') << "half a file";
        EXPECT_NO_THROW(read_image(entry.path().string(), {}));
    }
    render(true);
    ASSERT_TRUE(until([&] { return !window_->jobs().running(); }));
    EXPECT_EQ(count(), 2 * kFrames);
    for (const double other : {50.0, 40.0}) {  // what is whole is stale then
        const auto before = std::filesystem::last_write_time(file("out/key.1.exr"));
        session().set(panel_knob("spill_cool"), other);
        render(true);
        ASSERT_TRUE(until([&] { return !window_->jobs().running(); }));
        EXPECT_NE(std::filesystem::last_write_time(file("out/key.1.exr")), before);
    }

    SetupOptions options;
    options.inputs = files.inputs;
    options.frames = files.frames;
    options.settings.script = file("shot.veloxa");
    KeySetup setup(options, {});
    setup.prepare();
    KeyPlan plan;
    plan.frames = setup.frames();
    std::filesystem::create_directories(file("own"));
    plan.outputs = parse_outputs({file("own/key.#.exr"), "matte=" + file("own/matte.#.exr")});
    KeyPipeline pipeline(plan, setup.loader(), setup.node(), setup.node().image(), setup.inputs(), {});
    ASSERT_TRUE(pipeline.run());
    for (const char* const name : {"key.1.exr", "key.60.exr", "matte.2.exr"}) {
        const auto own = read_image(file("own/" + std::string(name)), {});
        const auto other = read_image(file("out/" + std::string(name)), {});
        for (std::size_t c = 0; c < own.planes.size(); ++c) {
            ASSERT_EQ(own.planes[c] == nullptr, other.planes[c] == nullptr);
            if (own.planes[c] == nullptr) continue;
            const float* const begin = own.planes[c].get();
            EXPECT_TRUE(std::equal(begin, begin + own.width() * own.height(), other.planes[c].get())) << name;
        }
    }
}

TEST_F(WindowRig, WorstFramesAreListedWorstFirst) {
    open_window(4);
    cut(file("fg.3.exr"), 0.5);
    session().set_mattes({{DrawnMatte::Kind::kHoldout, false, 0.0, {{{5, 5}, {150, 5}, {80, 90}}}}}, "draw");
    command("worst");
    auto* const box = dialog<QDialog>("worst_dialog");
    ASSERT_NE(box, nullptr);
    box->accept();
    ASSERT_TRUE(until([&] { return window_->jobs().running(); }));
    ASSERT_TRUE(until([&] { return !window_->jobs().running(); }));
    auto* const table = accessible<QTableWidget>("Worst frames");
    ASSERT_EQ(table->rowCount(), 4);
    EXPECT_EQ(table->item(0, 0)->text(), "3");
    EXPECT_THAT(table->item(0, 3)->text().toStdString(), HasSubstr("fg.3.exr"));
    const auto faults = [&](int row) {
        return table->item(row, 1)->text().toLongLong() + table->item(row, 2)->text().toLongLong();
    };
    EXPECT_TRUE(faults(1) >= faults(2) && faults(2) >= faults(3));
    for (int row = 1; row < 4; ++row) {
        session().go_to(table->item(row, 0)->text().toInt());
        ASSERT_TRUE(settled());
        const StatusCounts counts = status_counts(*shown_.picture.image);
        EXPECT_EQ(counts.leaks, table->item(row, 1)->text().toLongLong());
        EXPECT_EQ(counts.holes, table->item(row, 2)->text().toLongLong());
    }
}

}  // namespace
}  // namespace test
