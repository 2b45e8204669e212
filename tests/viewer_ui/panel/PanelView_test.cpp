#include "panel/PanelView.h"

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QColorDialog>
#include <QComboBox>
#include <QMenu>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include "panel/NumberControls.h"
#include "viewer_ui/Widgets.h"
#include "viewer_ui/panel/NodeEdits.h"

using namespace Zo::Image;
using namespace veloxa::viewer;
using Kind = Knob::Kind;

namespace {

class PanelViewTest : public testing::Test {
  protected:
    PanelViewTest() : view(edits) {
        view.resize(420, 4000);
        view.show();
        view.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
    }

    template <class T>
    T* part(const QString& name) {
        T* const found = test::named<T>(view, name);
        EXPECT_NE(found, nullptr) << name.toStdString();
        return found;
    }

    MarkedLabel* label(const char* text, int nth = 0) {
        for (MarkedLabel* const candidate : view.findChildren<MarkedLabel*>()) {
            if (candidate->text() == text && nth-- == 0) return candidate;
        }
        return nullptr;
    }

    static void type(NumberField& field, const QString& text) {
        field.setFocus();
        field.selectAll();
        QTest::keyClicks(&field, text);
        QTest::keyClick(&field, Qt::Key_Return);
    }
    // Types into the knob's control what changes it, and returns the values that it should have then.
    std::vector<double> change_by_keys(Knob& knob, KnobControl& control) {
        const auto press = [](QWidget& on, Qt::Key key) { QTest::keyClick(&on, key); };
        const double before = knob.get_value();
        if (knob.kind() == Kind::kBool) {
            press(*control.findChild<QAbstractButton*>(), Qt::Key_Space);
            return {1.0 - before};
        }
        if (knob.kind() == Kind::kMenu) {
            const bool last = before + 1 == static_cast<double>(knob.items().size());
            press(*control.findChild<QComboBox*>(), last ? Qt::Key_Up : Qt::Key_Down);
            return {before + (last ? -1 : 1)};
        }
        if (knob.kind() == Kind::kWidthHeight) {
            auto* const lock = control.findChild<QAbstractButton*>();
            if (lock->isChecked()) press(*lock, Qt::Key_Space);
        }
        std::vector<double> expected;
        for (NumberField* const field : control.findChildren<NumberField*>()) {
            const double value = 1234.5 + static_cast<double>(expected.size());
            type(*field, QString::number(value));
            expected.push_back(value);
        }
        return expected;
    }

    test::NodeEdits edits;
    PanelView view;
};

}  // namespace

TEST_F(PanelViewTest, EveryKnobThatIsSeenCanBeSetByItsKeys) {
    int knobs = 0;
    for (const auto& knob : edits.panel().knobs()) {
        if (knob->tab() == "veloxa_toolbar" || !knob->takes_value() || knob->kind() == Kind::kCustom)
            continue;
        auto* const control = view.findChild<KnobControl*>(QString::fromStdString(knob->name()));
        ASSERT_NE(control, nullptr) << knob->name();
        // One that waits for a switch gets it.
        for (const char* const on : {"film", "screen_correct", "shadow", "cleanup", "color_conformance"}) {
            edits.knob(on).set_value(1.0);
            edits.knob(on).changed();
        }
        view.refresh();
        EXPECT_TRUE(control->isVisible() && control->isEnabled()) << knob->name();
        const std::vector<double> expected = change_by_keys(knob->target(), *control);
        for (int i = 0; i < knob->value_count(); ++i) {
            EXPECT_EQ(knob->get_value(i), expected.at(static_cast<std::size_t>(i))) << knob->name();
        }
        knob->restore_default();
        knob->changed();
        ++knobs;
    }
    EXPECT_GT(knobs, 60);
}

TEST_F(PanelViewTest, EveryPartHasANameAndATooltipAndIsReachedByTab) {
    QWidget* focus = view.findChild<QLineEdit*>();
    focus->setFocus();
    QSet<QWidget*> reached;
    for (int i = 0; i < 500 && !reached.contains(QApplication::focusWidget()); ++i) {
        reached.insert(QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    int parts = 0;
    for (QWidget* const widget : view.findChildren<QWidget*>()) {
        const bool part = qobject_cast<QAbstractButton*>(widget) || qobject_cast<NumberField*>(widget) ||
                          qobject_cast<QComboBox*>(widget) || qobject_cast<KnobSlider*>(widget);
        if (!part || qobject_cast<QLineEdit*>(widget->parent())) continue;
        ++parts;
        EXPECT_FALSE(widget->accessibleName().isEmpty() || widget->toolTip().isEmpty());
        EXPECT_TRUE(!widget->isEnabled() || reached.contains(widget))
            << widget->accessibleName().toStdString();
    }
    EXPECT_GT(parts, 100);
    const QString tooltip = part<QComboBox>("overlay")->toolTip();
    EXPECT_TRUE(tooltip.contains("\n- screen: tint the areas") && tooltip.endsWith("\noverlay_mode"));
}

TEST_F(PanelViewTest, TheDragOfASliderIsOneEdit) {
    auto* const slider = part<KnobSlider>("brights slider, Density");
    const QPoint middle(slider->width() / 2, slider->height() / 2);
    const double before = edits.knob("brights").get_value();
    QTest::mousePress(slider, Qt::LeftButton, {}, middle);
    const double pressed = edits.knob("brights").get_value();
    EXPECT_NEAR(pressed, 500.0, 20.0);
    QTest::mouseMove(slider, middle + QPoint(20, 0));
    EXPECT_GT(edits.knob("brights").get_value(), pressed);
    QTest::mouseMove(slider, QPoint(slider->width() + 50, 0));
    QTest::mouseRelease(slider, Qt::LeftButton, {}, QPoint(slider->width() + 50, 0));
    EXPECT_EQ(edits.knob("brights").get_value(), 1000.0);
    EXPECT_EQ(part<NumberField>("brights, Density")->text(), "1000");
    EXPECT_EQ(edits.log, QStringList({"begin brights, Density", "set", "set", "set", "end"})) << before;

    edits.log.clear();
    QTest::keyClick(slider, Qt::Key_Left);
    EXPECT_EQ(edits.log, QStringList({"begin brights, Density", "set", "end"}));
    EXPECT_EQ(edits.knob("brights").get_value(), 990.0);

    edits.log.clear();
    QTest::mousePress(slider, Qt::LeftButton, {}, middle);
    view.setEnabled(false);  // while a tool works
    EXPECT_EQ(edits.log.count("end"), 1);
}

TEST_F(PanelViewTest, TheWheelScrollsUntilAControlHasTheFocus) {
    view.resize(420, 300);
    QCoreApplication::processEvents();
    auto* const bar = view.findChild<QScrollArea*>()->verticalScrollBar();
    const auto turn = [](QWidget* on) {
        QWheelEvent event(QPointF(3, 3), on->mapToGlobal(QPointF(3, 3)), {}, {0, -120}, {}, {}, {}, false);
        QSpontaneKeyEvent::setSpontaneous(&event);  // else it stays where it is sent
        qApp->notify(on, &event);
    };
    edits.knob("overlay_mode").set_value(1);
    view.refresh();
    view.setFocus();
    for (QWidget* const part : {static_cast<QWidget*>(part<KnobSlider>("warm slider, Density")),
                                static_cast<QWidget*>(part<NumberField>("warm, Density")),
                                static_cast<QWidget*>(part<QComboBox>("overlay"))}) {
        bar->setValue(0);
        edits.log.clear();
        turn(part);
        EXPECT_GT(bar->value(), 0) << part->accessibleName().toStdString();
        EXPECT_TRUE(edits.log.isEmpty());
        part->setFocus();
        const int place = bar->value();
        turn(part);
        EXPECT_EQ(edits.log.count("set"), 1) << part->accessibleName().toStdString();
        EXPECT_EQ(bar->value(), place);
    }
}

TEST_F(PanelViewTest, FieldsTakeNumbersAndNothingElse) {
    auto* const field = part<NumberField>("darks, Density");
    const struct {
        const char* typed;
        const char* shown;
    } cases[] = {{"0.51", "0.51"}, {"-3000", "-3000"}, {"1e6", "1000000"},  {"abc", "1000000"},
                 {"", "1000000"},  {"inf", "1000000"}, {"1e39", "1000000"}, {"0.1", "0.1"}};
    for (const auto& [typed, shown] : cases) {
        field->setFocus();
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Backspace);
        QTest::keyClicks(field, typed);
        view.findChild<QLineEdit*>()->setFocus();
        EXPECT_EQ(field->text(), shown) << typed;
    }
    EXPECT_EQ(edits.knob("darks").get_value(), static_cast<double>(0.1f));
    edits.log.clear();
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(edits.log.isEmpty()) << "nothing was typed";
    const std::pair<Qt::KeyboardModifier, const char*> steps[] = {
        {Qt::NoModifier, "10.1"}, {Qt::ShiftModifier, "110.1"}, {Qt::ControlModifier, "111.1"}};
    for (const auto& [modifier, shown] : steps) {
        QTest::keyClick(field, Qt::Key_Up, modifier);
        EXPECT_EQ(field->text(), shown);
    }
    QTest::keyClicks(field, "7");
    edits.knob("darks").set_value(5.0);  // as undo may
    view.refresh();
    EXPECT_EQ(field->text(), "7111.1") << "what is typed stays";
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_EQ(field->text(), "5");
}

TEST_F(PanelViewTest, MarksWhatDiffersAndResetsItByADoubleClick) {
    Knob& knob = edits.knob("warm");
    EXPECT_FALSE(label("warm")->marked() || label("Density")->marked());
    knob.set_value(50.0);
    view.refresh();
    EXPECT_TRUE(edits.log.isEmpty()) << "refresh writes nothing";
    EXPECT_EQ(part<NumberField>("warm, Density")->text(), "50");
    EXPECT_TRUE(label("warm")->marked() && label("Density")->marked());
    QTest::mouseDClick(label("warm"), Qt::LeftButton);
    EXPECT_EQ(edits.log, QStringList({"reset"}));
    EXPECT_FALSE(knob.differs_from_default());
    EXPECT_FALSE(label("warm")->marked() || label("Density")->marked());

    knob.set_value(50.0);
    view.refresh();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, {3, 3}, {3, 3});
    QApplication::sendEvent(part<NumberField>("warm, Density"), &event);
    for (QMenu* const open : view.findChildren<QMenu*>()) {
        if (!open->isVisible()) continue;
        open->actions().at(1)->trigger();
        open->actions().at(0)->trigger();
    }
    EXPECT_EQ(QApplication::clipboard()->text(), "warm");
    EXPECT_FALSE(knob.differs_from_default());
}

TEST_F(PanelViewTest, EnablesAndHiddenKnobsFollow) {
    auto* const field = part<NumberField>("cleanup, Cleanup");
    auto* const in_title = part<QAbstractButton>("enable, Cleanup");
    EXPECT_FALSE(field->isEnabled());
    EXPECT_TRUE(in_title->isEnabled());
    QTest::keyClick(in_title, Qt::Key_Space);
    EXPECT_TRUE(field->isEnabled() && edits.knob("cleanup").get_value() != 0.0);
    EXPECT_TRUE(part<QAbstractButton>("cleanup")->isChecked());
    edits.knob("cleanup_cleanup").visible(false);
    view.refresh();
    EXPECT_FALSE(field->isVisible());
    // A hidden setting stays so when a search finds it.
    QTest::keyClicks(view.findChild<QLineEdit*>(), "cleanup_cleanup");
    EXPECT_FALSE(field->isVisible());
}

TEST_F(PanelViewTest, SearchesLabelsNamesAndTabs) {
    view.set_folded({"Spill", "Color"});
    auto* const search = view.findChild<QLineEdit*>();
    view.focus_search();
    EXPECT_TRUE(search->hasFocus());
    const struct {
        const char* words;
        const char* seen;
        const char* unseen;
    } cases[] = {{"veiling", "background veiling red, Spill", "cool, Spill"},
                 {"spill_COOL", "cool, Spill", "cool, Density"},
                 {"spill cool", "cool, Spill", "warm, Spill"},
                 {"densit", "warm, Density", "warm, Spill"},
                 {"", "warm, Density", "warm, Spill"}};
    for (const auto& [words, seen, unseen] : cases) {
        QTest::keyClick(search, Qt::Key_Escape);
        QTest::keyClicks(search, words);
        EXPECT_EQ(search->text(), words);
        EXPECT_TRUE(part<NumberField>(seen)->isVisible()) << words;
        EXPECT_FALSE(part<NumberField>(unseen)->isVisible()) << words;
        EXPECT_EQ(view.folded(), QStringList({"Spill", "Color"}));
    }
    QTest::keyClick(part<QAbstractButton>("Show Spill"), Qt::Key_Space);
    EXPECT_EQ(view.folded(), QStringList({"Color"}));
}

TEST_F(PanelViewTest, SizesColoursAndButtonsOfTheirOwnKind) {
    type(*part<NumberField>("shrink width, Screen Correct"), "7");
    EXPECT_EQ(edits.knob("screen_shrink").text(), "7 7") << "locked";
    EXPECT_EQ(edits.log, QStringList({"begin shrink, Screen Correct", "set", "set", "end"}));
    QTest::keyClick(part<QAbstractButton>("shrink lock, Screen Correct"), Qt::Key_Space);
    type(*part<NumberField>("shrink height, Screen Correct"), "9");
    EXPECT_EQ(edits.knob("screen_shrink").text(), "7 9");

    auto* const pick = part<QAbstractButton>("screen color from picture");
    QTest::keyClick(pick, Qt::Key_Space);
    EXPECT_EQ(edits.picking(), &edits.knob("screen_color"));
    edits.pick_colour(nullptr);
    view.refresh();
    EXPECT_FALSE(pick->isChecked());

    for (const bool accepted : {false, true}) {
        edits.log.clear();
        const std::string before = edits.knob("screen_color").text();
        QTest::keyClick(part<QAbstractButton>("screen color colour dialog"), Qt::Key_Space);
        auto* const dialog = view.findChild<QColorDialog*>();
        ASSERT_NE(dialog, nullptr);
        dialog->setCurrentColor(QColor(0, 255, 51));
        EXPECT_EQ(edits.knob("screen_color").text(), "0 1 0.2");
        accepted ? dialog->accept() : dialog->reject();
        EXPECT_EQ(edits.knob("screen_color").text(), accepted ? "0 1 0.2" : before);
        EXPECT_EQ(edits.log.count("begin screen color") + edits.log.count("end"), 2);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QTest::keyClick(part<QAbstractButton>("invert"), Qt::Key_Space);
    EXPECT_EQ(edits.knob("overlay_mono").get_value(), 1.0);
    EXPECT_TRUE(part<QAbstractButton>("show image as monochrome")->isChecked());
}

TEST_F(PanelViewTest, IsMadeAnew) {
    view.set_folded({"Film"});
    part<NumberField>("warm, Density")->setFocus();
    QTest::keyClicks(part<NumberField>("warm, Density"), "5");
    edits.log.clear();
    edits.node.emplace();
    view.rebuild();
    EXPECT_TRUE(edits.log.isEmpty()) << "nothing is written to knobs that are gone";
    EXPECT_EQ(part<NumberField>("warm, Density")->text(), "0");
    EXPECT_EQ(view.folded(), QStringList({"Film"}));
}
