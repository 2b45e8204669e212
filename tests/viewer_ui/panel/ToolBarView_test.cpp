#include "panel/ToolBarView.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QMenu>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <QToolButton>
#include <cmath>

#include "panel/ChangesView.h"
#include "panel/DarkTheme.h"
#include "panel/ToolIcons.h"
#include "viewer_ui/Widgets.h"
#include "viewer_ui/panel/NodeEdits.h"

using namespace Zo::Image;
using namespace veloxa::viewer;
using test::named;

namespace {

QImage drawn(const QIcon& icon) {
    return icon.pixmap(QSize(20, 20)).toImage().convertToFormat(QImage::Format_ARGB32);
}

QColor below(const QIcon& icon) {
    const QImage image = drawn(icon);
    return image.pixelColor(image.width() / 2, image.height() * 7 / 8);
}

double luminance(const QColor& colour) {
    const auto linear = [](double v) {
        return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

double contrast(const QPalette& palette, QPalette::ColorGroup group, QPalette::ColorRole text,
                QPalette::ColorRole ground) {
    const double a = luminance(palette.color(group, text));
    const double b = luminance(palette.color(group, ground));
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

}  // namespace

TEST(ToolBarView, EveryToolIsAButtonThatIsTakenAndLeft) {
    test::NodeEdits edits;
    ToolBarView bar(edits);
    bar.resize(2400, 60);
    bar.show();
    bar.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&bar));
    int tools = 0;
    for (const auto& knob : edits.panel().knobs()) {
        if (knob->kind() != Knob::Kind::kToolButton) continue;
        ++tools;
        auto* const action = bar.findChild<QAction*>(QString::fromStdString(knob->name()));
        ASSERT_NE(action, nullptr) << knob->name();
        QWidget* const widget = bar.widgetForAction(action);
        EXPECT_FALSE(widget->accessibleName().isEmpty() || action->toolTip().isEmpty());
        QTest::keyClick(widget, Qt::Key_Space);
        EXPECT_EQ(edits.tool(), knob.get());
        EXPECT_EQ(action->isChecked() + bar.findChild<QAction*>("toolbar_addmatte")->isChecked(),
                  knob->name() == "toolbar_addmatte" ? 2 : 1)
            << "one at a time";
    }
    EXPECT_EQ(tools, 15);
    QTest::keyClick(&bar, Qt::Key_Escape);
    EXPECT_EQ(edits.tool(), nullptr);
    QToolButton* const add = named<QToolButton>(bar, "add, matte");
    for (Knob* const expected : {&edits.knob("toolbar_addmatte"), static_cast<Knob*>(nullptr)}) {
        QTest::mouseClick(add, Qt::LeftButton);
        EXPECT_EQ(edits.tool(), expected);
        EXPECT_EQ(add->isChecked(), expected != nullptr);
    }
    edits.pick_colour(&edits.knob("screen_color"));
    bar.refresh();
    QTest::keyClick(&bar, Qt::Key_Escape);
    EXPECT_EQ(edits.picking(), nullptr);
}

TEST(ToolBarView, ShowsColoursSettingsAndButtonsThatLook) {
    test::NodeEdits edits;
    ToolBarView bar(edits);
    auto* const action = bar.findChild<QAction*>("toolbar_screen");
    EXPECT_NE(below(action->icon()), QColor(0, 255, 0));
    edits.knob("screen_color").set_value(1.0, 1);
    edits.knob("screen_color").changed();
    bar.refresh();
    EXPECT_EQ(below(action->icon()), QColor(0, 255, 0));
    EXPECT_NE(drawn(tool_icon("AnyBrush")), drawn(tool_icon("AnyEraser")));
    EXPECT_EQ(drawn(tool_icon("")), drawn(tool_icon("Unheard")));

    auto* const menu = bar.findChild<QComboBox*>();
    EXPECT_EQ(menu->accessibleName(), "overlay");
    QTest::keyClick(menu, Qt::Key_Down);
    EXPECT_EQ(edits.knob("overlay_mode").get_value(), 1.0);

    edits.log.clear();
    QTest::keyClick(named<QToolButton>(bar.buttons(), "Set Up Automatically"), Qt::Key_Space);
    named<QToolButton>(bar.buttons(), "Find Screen")->menu()->actions().at(2)->trigger();
    named<QToolButton>(bar.buttons(), "Find Screen")->menu()->actions().at(2)->trigger();
    EXPECT_EQ(edits.log, QStringList({"press set_up", "set", "press find_screen", "press find_screen"}));
    EXPECT_EQ(edits.knob("find_screen").get_value(), 2.0);
    EXPECT_EQ(named<QToolButton>(bar.buttons(), "Add Frame to Shot"), nullptr) << "stands on a tab";

    bar.rebuild();
    EXPECT_EQ(bar.findChildren<QComboBox*>().size(), 1);
    QSignalSpy toggled(bar.toggleViewAction(), &QAction::toggled);
    bar.show();
    EXPECT_EQ(toggled.count(), 1) << "the window's menu shows and hides it";
}

TEST(ChangesView, ShowsWhatToolsDidAndCopiesIt) {
    ToolReport done;
    done.tool = "matte: add";
    done.box = {10, 20, 30, 40};
    done.frame = 7;
    done.changes = {{"brights", "100", "120.5"}, {"screen_color", "0 0 0", "0 1 0"}};
    done.satisfied = 5;
    done.unsatisfied = 2;
    done.unusable = 1;
    done.notes = {"a note"};
    done.held = {"warm"};
    ToolReport failed;
    failed.tool = "screen";
    failed.failure = "nothing there";
    ChangesView view;
    view.show_reports({done, failed});
    const QString first =
        "matte: add\t7\t10, 20 to 30, 40\t5\t2\t1\tbrights  100 \u2192 120.5; screen_color  0 0 0 "
        "\u2192 0 1 0\ta note; Held: warm\n";
    EXPECT_TRUE(view.text().contains(first));
    EXPECT_TRUE(view.text().endsWith("Failed: nothing there\n"));
    view.findChild<QTableWidget*>()->selectRow(0);
    QTest::keySequence(view.findChild<QTableWidget*>(), QKeySequence::Copy);
    EXPECT_TRUE(QApplication::clipboard()->text().endsWith(first));
}

TEST(DarkTheme, TextsStandOut) {
    const QPalette former = QApplication::palette();
    use_dark_theme(*qApp);
    const QPalette palette = QApplication::palette();
    const std::pair<QPalette::ColorRole, QPalette::ColorRole> pairs[] = {
        {QPalette::WindowText, QPalette::Window},
        {QPalette::Text, QPalette::Base},
        {QPalette::Text, QPalette::AlternateBase},
        {QPalette::ButtonText, QPalette::Button},
        {QPalette::ToolTipText, QPalette::ToolTipBase},
        {QPalette::HighlightedText, QPalette::Highlight},
        {QPalette::PlaceholderText, QPalette::Base},
        {QPalette::BrightText, QPalette::Base},
        {QPalette::Link, QPalette::Window},
        {QPalette::WindowText, QPalette::Button}};
    for (const auto& [text, ground] : pairs) {
        EXPECT_GE(contrast(palette, QPalette::Active, text, ground), 4.5) << text << " on " << ground;
        EXPECT_GE(contrast(palette, QPalette::Disabled, text, ground), 3.0) << text << " on " << ground;
        EXPECT_LT(luminance(palette.color(ground)), 0.2);
    }
    QApplication::setPalette(former);
}
