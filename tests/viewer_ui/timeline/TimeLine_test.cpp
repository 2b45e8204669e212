#include "timeline/TimeLine.h"

#include <gmock/gmock.h>

#include <QDoubleSpinBox>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QWheelEvent>

#include "viewer_ui/Widgets.h"

using namespace veloxa;
using namespace veloxa::viewer;
using testing::ElementsAre;

namespace {

class TimeLineTest : public testing::Test {
  protected:
    TimeLineTest() {
        line.resize(1008, 80);
        line.set_range({10, 28, 2});  // ten frames
        line.show();
        QObject::connect(&line, &TimeLine::frameWanted, [this](int frame) { wanted.push_back(frame); });
        strip = line.findChild<FrameStrip*>();
        EXPECT_EQ(strip->width(), 1000);
    }

    std::vector<int> taken() { return std::exchange(wanted, {}); }

    TimeLine line;
    FrameStrip* strip = nullptr;
    std::vector<int> wanted;
};

}  // namespace

TEST_F(TimeLineTest, ClicksDragsWheelKeysAndFieldsAskForFrames) {
    QTest::mousePress(strip, Qt::LeftButton, {}, {550, 20});
    for (const int x : {560, 650, 651, 5000}) QTest::mouseMove(strip, {x, 20});
    QTest::mouseRelease(strip, Qt::LeftButton, {}, {5000, 20});
    EXPECT_THAT(taken(), ElementsAre(20, 22, 28));

    const struct {
        Qt::Key key;
        int frame;
    } keys[] = {{Qt::Key_Left, 26}, {Qt::Key_PageUp, 10}, {Qt::Key_Right, 12},
                {Qt::Key_End, 28},  {Qt::Key_Home, 10},   {Qt::Key_PageDown, 28}};
    for (const auto& [key, frame] : keys) {
        QTest::keyClick(strip, key);
        EXPECT_EQ(line.current(), frame) << key;
        EXPECT_THAT(taken(), ElementsAre(frame));
    }
    QTest::keyClick(strip, Qt::Key_Right);
    EXPECT_TRUE(taken().empty()) << "there is no next one";
    for (const int turn : {60, 60, -240}) {
        QWheelEvent event({3, 3}, {3, 3}, {}, {0, turn}, {}, {}, {}, false);
        QCoreApplication::sendEvent(strip, &event);
    }
    EXPECT_THAT(taken(), ElementsAre(26, 28));
    line.findChild<QSpinBox*>()->setValue(15);
    EXPECT_EQ(line.findChild<QSpinBox*>()->value(), line.current());
    EXPECT_THAT(taken(), ElementsAre(16));
    QTest::keyClick(test::named<QToolButton>(line, "Step back"), Qt::Key_Space);
    QTest::keyClick(test::named<QToolButton>(line, "Step forward"), Qt::Key_Space);
    EXPECT_THAT(taken(), ElementsAre(14, 16));
    line.set_range({1, 3, 1});
    EXPECT_EQ(line.current(), 1);
    EXPECT_TRUE(taken().empty());
    for (const QWidget* const part : line.findChildren<QWidget*>()) {
        EXPECT_TRUE(part->focusPolicy() == Qt::NoFocus || qobject_cast<const QLineEdit*>(part) ||
                    !(part->accessibleName().isEmpty() || part->toolTip().isEmpty()));
    }
}

TEST_F(TimeLineTest, PlayingWaitsForEachFrame) {
    line.set_frames_per_second(1000.0);
    line.set_looping(false);
    line.go_to(22);
    taken();
    QTest::keyClick(strip, Qt::Key_Space);
    EXPECT_TRUE(line.playing());
    QTest::qWait(20);
    EXPECT_TRUE(taken().empty()) << "22 is not shown yet";
    line.set_shown(22);
    EXPECT_THAT(taken(), ElementsAre(24));
    QTest::qWait(20);
    line.set_shown(22);  // late news of another frame
    EXPECT_TRUE(taken().empty());
    line.set_state(24, FrameState::kFailed, "unreadable");
    EXPECT_THAT(taken(), ElementsAre(26)) << "a frame that failed holds up nothing";
    line.set_shown(26);
    EXPECT_TRUE(QTest::qWaitFor([&] { return wanted == std::vector{28}; }));
    line.set_shown(28);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !line.playing(); })) << "it ends at the last";
    EXPECT_THAT(taken(), ElementsAre(28));

    QTest::mouseClick(test::named<QToolButton>(line, "Play"), Qt::LeftButton);
    EXPECT_THAT(taken(), ElementsAre(10)) << "and begins again";
    line.set_looping(true);
    line.go_to(28);
    line.set_shown(28);
    EXPECT_TRUE(QTest::qWaitFor([&] { return wanted == std::vector({28, 10}); }));
    QTest::keyClick(strip, Qt::Key_Right);
    EXPECT_FALSE(line.playing());
}

TEST_F(TimeLineTest, PlaysAtItsRateWhenFramesAreThereAtOnce) {
    QObject::connect(&line, &TimeLine::frameWanted, &line, &TimeLine::set_shown);
    line.set_frames_per_second(150.0);
    QElapsedTimer clock;
    clock.start();
    line.set_playing(true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return wanted.size() >= 31; }));
    // 30 intervals; whole milliseconds would make it 210 and more.
    EXPECT_GE(clock.elapsed(), 199);
    for (std::size_t i = 1; i < wanted.size(); ++i) {
        EXPECT_EQ(wanted[i], wanted[i - 1] == 28 ? 10 : wanted[i - 1] + 2) << "none is skipped";
    }
}

TEST_F(TimeLineTest, ShowsWhatIsKnownOfFrames) {
    const auto colour_at = [&](double x) {
        const QImage image = strip->grab().toImage();
        return image.pixelColor(static_cast<int>(x * image.devicePixelRatio()), image.height() - 3);
    };
    const QColor nothing = colour_at(250);
    std::vector<QColor> seen{nothing};
    for (const FrameState state :
         {FrameState::kReading, FrameState::kPlate, FrameState::kResult, FrameState::kFailed}) {
        line.set_state(14, state, "cannot be read");
        EXPECT_THAT(seen, testing::Not(testing::Contains(colour_at(250))));
        EXPECT_EQ(colour_at(350), nothing);
        seen.push_back(colour_at(250));
    }
    EXPECT_EQ(strip->description(14), "Frame 14 failed: cannot be read");
    line.set_worst(14);
    EXPECT_TRUE(strip->description(14).contains("worst"));
    line.set_state(15, FrameState::kResult);  // is not of the range
    line.set_state(14, FrameState::kUnknown);
    EXPECT_EQ(colour_at(250), nothing);

    line.set_range({1, 100'000, 1});
    line.set_state(53'050, FrameState::kFailed, "gone");
    EXPECT_EQ(colour_at(530), seen[4]) << "one of the hundred in the column";
    EXPECT_EQ(colour_at(532), nothing);
    for (int frame = 1; frame <= 100'000; ++frame) line.set_state(frame, FrameState::kResult);
    EXPECT_EQ(colour_at(530), seen[3]);
}
