// Walks through the viewer with a plate as docs/viewer.md does, and keeps a picture of each step.
//
//   viewer_shots PLATE BACKGROUND SEQUENCE OUT      SEQUENCE: a frame of one
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <iostream>
#include <vector>

#include "area/PictureArea.h"
#include "panel/DarkTheme.h"
#include "panel/PanelView.h"
#include "shot/files/ImageLibrary.h"
#include "shots/Hand.h"
#include "timeline/TimeLine.h"

namespace veloxa::viewer {

namespace {

constexpr QSize kSize{1400, 880};

struct Files {
    QString plate, background, sequence, out;
};

void open(Hand& hand, const QString& plate, const QString& background) {
    hand.key(Qt::Key_O, Qt::ControlModifier);
    hand.name_file(plate);
    hand.wait();
    hand.key(Qt::Key_B, Qt::ControlModifier);
    hand.name_file(background);
    hand.wait();
}

void paint(Hand& hand, const std::vector<Point>& path) {
    hand.move(path.front());
    hand.press(path.front());
    for (const Point& place : path) hand.move(place);
    hand.release(path.back());
    hand.wait();
}

// The matte by its state, and what a stroke of a tool does to the worst place of it.
void mend(Hand& hand) {
    hand.choose("first_picture", QStringLiteral("status"));
    hand.key(Qt::Key_L);
    hand.wait();
    hand.keep(QStringLiteral("viewer-status"));
    hand.zoom({345.0, 140.0}, 4);
    hand.wait();
    hand.take_tool("toolbar_addmatte");
    hand.press({375.0, 215.0});
    for (int n = 0; n <= 20; ++n) hand.move({375.0 - 3.4 * n, 215.0 - 7.0 * n});
    hand.wait();
    hand.keep(QStringLiteral("viewer-stroke"));
    hand.release({307.0, 75.0});
    hand.wait();
    hand.keep(QStringLiteral("viewer-changes"));
    hand.key(Qt::Key_F);
    hand.wait();
    paint(hand, {{505.0, 600.0}, {600.0, 600.0}, {630.0, 500.0}});
    paint(hand, {{690.0, 300.0}, {700.0, 230.0}, {675.0, 100.0}});
    hand.key(Qt::Key_V);
}

void compare(Hand& hand) {
    hand.child<QDockWidget>(QStringLiteral("changes_dock")).close();
    hand.key(Qt::Key_W);
    hand.choose("second_picture", QStringLiteral("status"));
    hand.choose("second_settings", QStringLiteral("default"));
    hand.wait();
    hand.keep(QStringLiteral("viewer-wipe"));
    hand.key(Qt::Key_1, Qt::ShiftModifier);
    hand.wait();
}

void draw(Hand& hand) {
    hand.choose("first_picture", QStringLiteral("result"));
    hand.zoom({372.0, 14.0}, 8);
    hand.wait();
    hand.key(Qt::Key_G);
    for (const Point& place : std::vector<Point>{{366, 32}, {386, 24}, {391, 8}, {389, 1}, {356, 1}, {352, 12}})
        hand.click(place);
    hand.key(Qt::Key_Return);
    hand.wait();
    hand.keep(QStringLiteral("viewer-garbage"));
    hand.key(Qt::Key_V);
    hand.key(Qt::Key_F);
    hand.wait();
}

void look(Hand& hand) {
    hand.key(Qt::Key_N);
    hand.wait();
    hand.keep(QStringLiteral("viewer-false"));
    hand.key(Qt::Key_N);
    hand.key(Qt::Key_F, Qt::ControlModifier);
    for (const char letter : {'s', 'p', 'i', 'l', 'l'})
        QTest::keyClick(hand.window().windowHandle(), letter);
    hand.wait();
    hand.keep_part(QStringLiteral("viewer-search"), hand.window().panel());
    hand.key(Qt::Key_Escape);
}

// What the automatic set-up makes of it, beside the strokes.
void set_up(Hand& hand) {
    hand.window().area().setFocus();
    hand.key(Qt::Key_1, Qt::ControlModifier);
    hand.click(hand.child<QToolButton>(QString(), &hand.child<QWidget>(QStringLiteral("set_up"))));
    hand.wait();
    hand.key(Qt::Key_S);
    hand.choose("first_picture", QStringLiteral("matte"));
    hand.choose("second_picture", QStringLiteral("matte"));
    hand.choose("second_settings", QStringLiteral("A"));
    hand.wait();
    hand.keep(QStringLiteral("viewer-auto"));
    hand.key(Qt::Key_1, Qt::ShiftModifier);
    hand.choose("first_picture", QStringLiteral("result"));
    hand.wait();
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
    hand.wait();
    hand.keep(QStringLiteral("viewer-jobs"));
}

void walk(const Files& files) {
    Hand hand(kSize, files.out);
    open(hand, files.plate, files.background);
    hand.keep(QStringLiteral("viewer-open"));
    mend(hand);
    compare(hand);
    draw(hand);
    look(hand);
    set_up(hand);
    render(hand, files.out);
}

// The whole window over a sequence.
void tour(const Files& files) {
    Hand hand(kSize, files.out);
    hand.key(Qt::Key_O, Qt::ControlModifier);
    hand.name_file(files.sequence);
    hand.wait();
    hand.click(hand.child<QToolButton>(QString(), &hand.child<QWidget>(QStringLiteral("set_up"))));
    hand.wait();
    const FrameRange range = hand.window().session().range();
    for (int n = 0; n < range.count() / 2; ++n) {
        hand.key(Qt::Key_Period);
        hand.wait();
    }
    hand.keep(QStringLiteral("viewer"));
    hand.keep_part(QStringLiteral("viewer-time"), hand.window().time_line());
}

}  // namespace

}  // namespace veloxa::viewer

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (argc != 5) {
        std::cerr << "usage: viewer_shots PLATE BACKGROUND SEQUENCE OUT\n";
        return 2;
    }
    veloxa::silence_library();
    veloxa::viewer::use_dark_theme(application);
    const auto argument = [&](int n) { return QFileInfo(QString::fromLocal8Bit(argv[n])).absoluteFilePath(); };
    const veloxa::viewer::Files files{argument(1), argument(2), argument(3), argument(4)};
    try {
        veloxa::viewer::walk(files);
        veloxa::viewer::tour(files);
    } catch (const std::exception& error) {
        std::cerr << "viewer_shots: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
