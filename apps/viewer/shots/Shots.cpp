// Walks through the viewer with a plate as docs/viewer.md does, and keeps a picture of each step.
//
//   viewer_shots PLATE BACKGROUND SEQUENCE BACKGROUND OUT      SEQUENCE: a frame of one
#include <QApplication>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <iostream>
#include <vector>

#include "area/PictureArea.h"
#include "panel/DarkTheme.h"
#include "panel/PanelView.h"
#include "shots/Hand.h"
#include "timeline/FrameStrip.h"
#include "timeline/TimeLine.h"

namespace veloxa::viewer {

namespace {

constexpr QSize kSize{1330, 850};

struct Files {
    QString plate, background, sequence, sequence_background, out;
};

void open(Hand& hand, const QString& plate, const QString& background) {
    hand.key(Qt::Key_O, Qt::ControlModifier);
    hand.name_file(plate);
    hand.wait();
    hand.key(Qt::Key_B, Qt::ControlModifier);
    hand.name_file(background);
    hand.wait();
}

// The matte by its state, before the automatic set-up and after.
void set_up(Hand& hand) {
    hand.key(Qt::Key_1, Qt::ControlModifier);
    hand.press_button("set_up");
    hand.wait();
    hand.child<QDockWidget>(QStringLiteral("changes_dock")).close();
    hand.key(Qt::Key_L);
    hand.key(Qt::Key_W);
    hand.choose("first_picture", QStringLiteral("status"));
    hand.choose("second_picture", QStringLiteral("status"));
    hand.choose("second_settings", QStringLiteral("A"));
    hand.wait();
    hand.keep(QStringLiteral("viewer-auto"));
    hand.key(Qt::Key_1, Qt::ShiftModifier);
    hand.wait();
}

// A stroke over what is seen through and should not be.
void mend(Hand& hand) {
    hand.zoom({470.0, 480.0}, 8);
    hand.wait();
    hand.take_tool("toolbar_unmixsolid");
    for (int n = 0; n < 2; ++n) hand.key(Qt::Key_BracketLeft, Qt::ControlModifier);
    const Point from{487.0, 470.0};
    const Point to{490.0, 460.0};
    hand.move(from);
    hand.press(from);
    for (double part = 0.0; part <= 1.0; part += 0.1)
        hand.move({from.x + part * (to.x - from.x), from.y + part * (to.y - from.y)});
    hand.wait();
    hand.keep(QStringLiteral("viewer-stroke"));
    hand.release(to);
    hand.wait();
    hand.key(Qt::Key_V);
    hand.wait();
    hand.keep(QStringLiteral("viewer-changes"));
    hand.child<QDockWidget>(QStringLiteral("changes_dock")).close();
    hand.key(Qt::Key_F);
}

void draw(Hand& hand) {
    hand.choose("first_picture", QStringLiteral("result"));
    hand.zoom({372.0, 14.0}, 5);
    hand.wait();
    hand.key(Qt::Key_G);
    for (const Point& place :
         std::vector<Point>{{366, 34}, {388, 26}, {392, 8}, {389, 2}, {354, 2}, {350, 12}})
        hand.click(place);
    hand.key(Qt::Key_Return);
    hand.wait();
    hand.keep(QStringLiteral("viewer-garbage"));
    hand.key(Qt::Key_V);
    hand.key(Qt::Key_F);
    hand.wait();
}

void search(Hand& hand) {
    hand.key(Qt::Key_F, Qt::ControlModifier);
    for (const char letter : {'s', 'p', 'i', 'l', 'l'}) QTest::keyClick(hand.window().windowHandle(), letter);
    hand.wait();
    hand.keep_part(QStringLiteral("viewer-search"), hand.window().panel());
    hand.key(Qt::Key_Escape);
}

void render(Hand& hand, const QString& out) {
    hand.key(Qt::Key_S, Qt::ControlModifier);
    hand.name_file(out + QStringLiteral("/walk.veloxa"));
    hand.wait([&] { return !hand.window().session().modified(); }, QStringLiteral("saved script"));
    hand.key(Qt::Key_R, Qt::ControlModifier);
    auto& dialog = hand.dialog<QDialog>(QStringLiteral("render_dialog"));
    const QList<QLineEdit*> lines = dialog.findChildren<QLineEdit*>();
    const auto fill = [&](const char* caption, const QString& text) {
        for (QLineEdit* const line : lines) {
            if (line->accessibleName() != QLatin1String(caption)) continue;
            line->setFocus();
            QTest::keyClicks(line, text);
        }
    };
    fill("Result", out + QStringLiteral("/result.exr"));
    fill("Matte", out + QStringLiteral("/matte.png"));
    hand.keep(QStringLiteral("viewer-render"), &dialog);
    hand.click(*hand.child<QDialogButtonBox>(QString(), &dialog).button(QDialogButtonBox::Ok));
    hand.wait([&] { return !hand.window().jobs().running(); }, QStringLiteral("end of the render"));
}

void walk(const Files& files) {
    Hand hand(kSize, files.out);
    open(hand, files.plate, files.background);
    hand.keep(QStringLiteral("viewer-open"));
    set_up(hand);
    mend(hand);
    draw(hand);
    search(hand);
    render(hand, files.out);
}

// The whole window over a sequence.
void tour(const Files& files) {
    Hand hand(kSize, files.out);
    open(hand, files.sequence, files.sequence_background);
    hand.press_button("set_up");
    hand.wait();
    hand.child<QDockWidget>(QStringLiteral("changes_dock")).close();
    const FrameRange range = hand.window().session().range();
    const int last = range.count() / 2;
    for (int n = 0; n < last; ++n) {
        hand.key(Qt::Key_Period);
        hand.wait();
    }
    // All of it read ahead, and what was shown is marked so.
    hand.wait(
        [&] {
            const auto& strip = hand.child<FrameStrip>({});
            return strip.state(range.at(last)) == FrameState::kResult &&
                   strip.state(range.last) == FrameState::kPlate;
        },
        QStringLiteral("time line of frames"));
    hand.keep(QStringLiteral("viewer"));
    hand.keep_part(QStringLiteral("viewer-time"), hand.window().time_line());
}

}  // namespace

}  // namespace veloxa::viewer

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (argc != 6) {
        std::cerr << "usage: viewer_shots PLATE BACKGROUND SEQUENCE BACKGROUND OUT\n";
        return 2;
    }
    veloxa::viewer::use_dark_theme(application);
    const auto argument = [&](int n) {
        return QFileInfo(QString::fromLocal8Bit(argv[n])).absoluteFilePath();
    };
    const veloxa::viewer::Files files{argument(1), argument(2), argument(3), argument(4), argument(5)};
    try {
        veloxa::viewer::walk(files);
        veloxa::viewer::tour(files);
    } catch (const std::exception& error) {
        std::cerr << "viewer_shots: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
