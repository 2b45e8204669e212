#include "area/PictureArea.h"

#include <QLabel>
#include <QProcess>
#include <cmath>
#include <functional>

#include "AreaRig.h"
#include "viewer_ui/Widgets.h"

using namespace test;

namespace {

class Navigation : public AreaRig {};
class Pictures : public AreaRig {};

TEST_F(Navigation, EveryWayMovesThePictureAsFarAsItSays) {
    const double step = 1.25;
    const QPointF corner(0.0, 0.0), middle(100.0, 50.0), from(50.0, 50.0), to(60.0, 45.0);
    const QPoint notch(0, 120);
    const auto middle_drag = [&] {
        press(from, Qt::MiddleButton);
        move({52, 50});
        move(to);
        release(to, Qt::MiddleButton);
    };
    const auto touchpad = [&] { wheel(corner, notch / 2, {7, -3}); };
    const auto touchpad_zoom = [&] { wheel(corner, notch, {0, 30}, Qt::ControlModifier); };
    const auto pinch = [&] {
        QNativeGestureEvent event(Qt::ZoomNativeGesture, QPointingDevice::primaryPointingDevice(), 2, corner,
                                  corner, corner, 0.5, {});
        QApplication::sendEvent(&area, &event);
    };
    const auto double_click = [&] { mouse(QEvent::MouseButtonDblClick, corner, Qt::MiddleButton); };
    const struct {
        const char* what;
        std::function<void()> act;
        double zoom;
        Point centre;
    } rows[] = {
        {"left drag", [&] { drag(from, to); }, 1.0, {90.0, 45.0}},
        {"middle drag in two moves", middle_drag, 1.0, {90.0, 45.0}},
        {"right", [&] { key(Qt::Key_Right); }, 1.0, {140.0, 50.0}},
        {"up, far", [&] { key(Qt::Key_Up, Qt::ShiftModifier); }, 1.0, {100.0, 250.0}},
        {"plus", [&] { key(Qt::Key_Plus); }, step, {100.0, 50.0}},
        {"minus", [&] { key(Qt::Key_Minus); }, 1.0 / step, {100.0, 50.0}},
        {"wheel in the middle", [&] { wheel(middle, 2 * notch); }, step * step, {100.0, 50.0}},
        {"wheel in the corner", [&] { wheel(corner, notch); }, step, {80.0, 60.0}},
        {"touchpad", touchpad, 1.0, {93.0, 47.0}},
        {"touchpad with Ctrl", touchpad_zoom, step, {80.0, 60.0}},
        {"pinch", pinch, 1.5, {100.0 * 2 / 3, 100.0 - 50.0 * 2 / 3}},
        {"fits", [&] { key(Qt::Key_F); }, 1.0 / 3.0, {200.0, 150.0}},
        {"fits by a double click", double_click, 1.0 / 3.0, {200.0, 150.0}},
        {"one to one", [&] { key(Qt::Key_1); }, 1.0 / ratio(), {100.0, 50.0}},
    };
    for (const auto& row : rows) {
        look(1.0, {100.0, 50.0});
        int changes = 0;
        const auto connection = QObject::connect(&area, &PictureArea::geometryChanged, [&] { ++changes; });
        row.act();
        QObject::disconnect(connection);
        EXPECT_NEAR(zoom(), row.zoom, 1e-9) << row.what;
        EXPECT_NEAR(centre().x, row.centre.x, 1e-9) << row.what;
        EXPECT_NEAR(centre().y, row.centre.y, 1e-9) << row.what;
        EXPECT_TRUE(changes > 0 || row.zoom == 1.0 / ratio()) << row.what;
    }
}

TEST_F(Navigation, SpaceMovesThePictureUnderATool) {
    int picks = 0;
    QObject::connect(&area, &PictureArea::picked, [&] { ++picks; });
    area.set_tool(PointerTool::kPick);
    key(Qt::Key_Right);  // a crosshair
    QTest::keyPress(&area, Qt::Key_Space);
    drag({50, 50}, {60, 45});
    QTest::keyRelease(&area, Qt::Key_Space);
    EXPECT_EQ(picks, 0);
    EXPECT_EQ(centre(), (Point{90.0, 45.0}));
    drag({50, 50}, {60, 45});
    EXPECT_EQ(picks, 1);
    EXPECT_EQ(centre(), (Point{90.0, 45.0}));
}

TEST_F(Navigation, FitsUntilItIsMovedByHand) {
    key(Qt::Key_F);
    area.resize(100, 300);
    EXPECT_DOUBLE_EQ(zoom(), 0.25);
    EXPECT_EQ(area.picture_geometry().height, 300 * ratio());
    area.set_format({{0, 0, 100, 100}, 2.0});
    EXPECT_DOUBLE_EQ(zoom(), 0.5);
    EXPECT_EQ(area.picture_geometry().aspect, 2.0);
    wheel({50, 150}, {0, 120});
    area.resize(200, 100);
    EXPECT_DOUBLE_EQ(zoom(), 0.625);
    EXPECT_EQ(area.picture_geometry().width, 200 * ratio());
}

// Each device pixel of a colour of its own.
Shaded pattern(const Geometry& geometry, std::uint32_t blue) {
    Shaded shaded{geometry.width, geometry.height, {}};
    for (int y = 0; y < shaded.height; ++y) {
        for (int x = 0; x < shaded.width; ++x) {
            shaded.pixels.push_back(0xff000000U | static_cast<std::uint32_t>(x % 256) << 16U |
                                    static_cast<std::uint32_t>(y % 256) << 8U | blue);
        }
    }
    return shaded;
}

TEST_F(Pictures, AreDrawnPixelForPixelAndFollowUntilTheNextOnes) {
    const Geometry geometry = area.picture_geometry();
    const Shaded shaded = pattern(geometry, 7);
    area.set_shaded(Pane::kFirst, shaded, geometry);
    area.clearFocus();
    const QImage now = seen();
    ASSERT_EQ(now.size(), QSize(geometry.width, geometry.height));
    for (int y = 0; y < now.height(); ++y) {
        for (int x = 0; x < now.width(); ++x) {
            ASSERT_EQ(now.pixel(x, y), shaded.pixels[static_cast<std::size_t>(y * now.width() + x)]);
        }
    }
    drag({50, 50}, {53, 48});
    const QImage moved = seen();
    const int right = static_cast<int>(3 * ratio()), up = static_cast<int>(2 * ratio());
    EXPECT_EQ(moved.pixel(right - 1, 5), kSurround);
    EXPECT_EQ(moved.pixel(5 + right, 5), now.pixel(5, 5 + up));
    EXPECT_EQ(moved.pixel(right + 40, moved.height() - 1 - up), now.pixel(40, now.height() - 1));
    EXPECT_EQ(moved.pixel(right + 40, moved.height() - 1), kSurround);
    look(2.0, {100.0, 50.0});  // every pixel is two by two around the middle
    const QImage enlarged = seen();
    const int x = now.width() / 2 + 10, y = now.height() / 2 - 4;
    EXPECT_EQ(enlarged.pixel(x, y), now.pixel(now.width() / 2 + 5, now.height() / 2 - 2));
    EXPECT_EQ(enlarged.pixel(x + 1, y + 1), enlarged.pixel(x, y));
    area.clear(Pane::kFirst);
    EXPECT_EQ(seen({100, 50}), kSurround);
}

TEST_F(Pictures, TwoOfThemShareTheArea) {
    const auto show_both = [&] {
        const Geometry& geometry = area.picture_geometry();
        area.set_shaded(Pane::kFirst, pattern(geometry, 1), geometry);
        area.set_shaded(Pane::kSecond, pattern(geometry, 2), geometry);
    };
    const auto pane_at = [&](QPointF place) { return seen(place) & 0xffU; };
    area.set_panes(Panes::kWipe);
    area.clearFocus();
    show_both();
    EXPECT_EQ(pane_at({94, 20}), 1U);
    EXPECT_EQ(pane_at({106, 20}), 2U);
    drag({101, 20}, {150, 20});  // the line
    EXPECT_DOUBLE_EQ(area.wipe(), 0.75);
    EXPECT_EQ(centre(), (Point{100.0, 50.0}));
    EXPECT_EQ(pane_at({144, 20}), 1U);
    EXPECT_EQ(seen({156, 20}), 0xff000000U | static_cast<std::uint32_t>(156 * ratio()) % 256 << 16U |
                                   static_cast<std::uint32_t>(20 * ratio()) << 8U | 2U);
    key(Qt::Key_Left, Qt::AltModifier | Qt::ShiftModifier);
    key(Qt::Key_Right, Qt::AltModifier);
    EXPECT_NEAR(area.wipe(), 0.66, 1e-9);
    area.set_tool(PointerTool::kBox);
    drag({132, 20}, {60, 20});  // on the line, not on its handle
    EXPECT_NEAR(area.wipe(), 0.66, 1e-9);
    drag({132, 50}, {100, 50});
    EXPECT_DOUBLE_EQ(area.wipe(), 0.5);
    area.set_tool(PointerTool::kNavigate);

    area.set_panes(Panes::kSideBySide);
    EXPECT_EQ(area.picture_geometry().width, 100 * ratio() - 1);
    EXPECT_EQ(zoom(), 1.0);
    show_both();
    EXPECT_EQ(seen({10, 20}) & 0xffff00ffU, 0xff000001U | static_cast<std::uint32_t>(10 * ratio()) << 16U);
    const int start = static_cast<int>(100 * ratio()) + 1;
    EXPECT_EQ(seen().pixel(start, 9), 0xff000902U);
    EXPECT_EQ(seen().pixel(start - 1, 9), kSurround);
    QPointF over;
    QObject::connect(&area, &PictureArea::hovered, [&](QPointF picture) { over = picture; });
    const QPointF second(start / ratio(), 50.0);
    move(second);
    const double left_edge = 100.0 - 0.5 * area.picture_geometry().width / ratio();
    EXPECT_DOUBLE_EQ(over.x(), left_edge);
    wheel(second, {0, 120});
    move(second);
    EXPECT_NEAR(over.x(), left_edge, 1e-9) << "zoomed at the cursor of its pane";
}

TEST_F(Pictures, CaptionsAndMessagesAreSeenAndTold) {
    area.clearFocus();
    const QImage bare = seen();
    area.set_caption(Pane::kFirst, "Plate");
    area.set_caption(Pane::kSecond, "Result");
    EXPECT_THAT(area.accessibleDescription().toStdString(),
                testing::AllOf(testing::HasSubstr("Plate."), testing::Not(testing::HasSubstr("Result"))));
    const QImage captioned = seen();
    area.set_panes(Panes::kSideBySide);
    EXPECT_THAT(area.accessibleDescription().toStdString(), testing::HasSubstr("Result."));
    const auto differs = [&](const QImage& image, QRectF part) {
        const QRect pixels((part.topLeft() * ratio()).toPoint(), (part.size() * ratio()).toSize());
        return image.copy(pixels) != bare.copy(pixels);
    };
    EXPECT_TRUE(differs(captioned, {8, 8, 30, 15}));
    EXPECT_FALSE(differs(captioned, {108, 8, 30, 15}));
    EXPECT_TRUE(differs(seen(), {110, 8, 30, 15}));
    area.set_message("plate.0007.exr: it cannot be read");
    const auto* const label = area.findChild<QLabel*>();
    EXPECT_TRUE(label->isVisible());
    EXPECT_TRUE(area.rect().contains(label->geometry()));
    EXPECT_EQ(label->accessibleName(), "plate.0007.exr: it cannot be read");
    EXPECT_EQ(seen({100, 50 - label->height() / 2.0 + 4}), 0xff3a1616U);
    area.set_message("");
    EXPECT_FALSE(label->isVisible());
}

TEST_F(Pictures, FilesAreTakenAndThePointerIsTold) {
    QStringList paths;
    int left = 0;
    QObject::connect(&area, &PictureArea::filesDropped, [&](const QStringList& dropped) { paths = dropped; });
    QObject::connect(&area, &PictureArea::left, [&] { ++left; });
    EXPECT_FALSE(drop(area, {QUrl("https://example.org/a.exr")}));
    EXPECT_TRUE(paths.isEmpty());
    EXPECT_TRUE(
        drop(area, {QUrl("file:///a b.exr"), QUrl("https://example.org/a.exr"), QUrl("file:///c.exr")}));
    EXPECT_EQ(paths, QStringList({"/a b.exr", "/c.exr"}));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&area, &leave);
    EXPECT_EQ(left, 1);
}

// Where two device pixels go to a point all of these must hold as well.
TEST(PictureArea, HoldsAtTwoDevicePixelsAPoint) {
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_SCALE_FACTOR", "2");
    for (const char* const name : {"GTEST_TOTAL_SHARDS", "GTEST_SHARD_INDEX", "GTEST_OUTPUT"}) {
        environment.remove(name);
    }
    QProcess other;
    other.setProcessEnvironment(environment);
    other.setProcessChannelMode(QProcess::MergedChannels);
    other.start(QCoreApplication::applicationFilePath(),
                {"--gtest_filter=Navigation.*:Pictures.*:Tools.*:Matte.*"});
    ASSERT_TRUE(other.waitForFinished(120000));
    const std::string told = other.readAll().toStdString();
    EXPECT_EQ(other.exitCode(), 0) << told;
    EXPECT_THAT(told, testing::HasSubstr("Pictures.AreDrawnPixelForPixel"));
}

}  // namespace
