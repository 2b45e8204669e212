#include <algorithm>
#include <string>
#include <vector>

#include "AreaRig.h"

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using Boxes = std::vector<Box>;

class Tools : public AreaRig {
  protected:
    Tools() {
        const auto note = [this](const char* what) {
            return [this, what](const Boxes& areas) {
                told.emplace_back(what);
                stroke = areas;
            };
        };
        QObject::connect(&area, &PictureArea::strokeBegun, note("begun"));
        QObject::connect(&area, &PictureArea::strokeMoved, note("moved"));
        QObject::connect(&area, &PictureArea::strokeEnded, note("ended"));
        QObject::connect(&area, &PictureArea::strokeCancelled, [this] { told.emplace_back("cancelled"); });
        QObject::connect(&area, &PictureArea::boxDragged, [this](const Box& box) { boxes.push_back(box); });
        QObject::connect(&area, &PictureArea::picked, [this](int x, int y) {
            boxes.push_back({x, y, 0, 0});
        });
    }
    void paint_with(int size) {
        area.set_tool(PointerTool::kBrush);
        area.set_brush_size(size);
    }

    Boxes stroke, boxes;
};

TEST_F(Tools, BrushSetsDabsAlongItsPath) {
    paint_with(10);
    press({20.5, 50.5});  // in pixel (20, 49)
    EXPECT_EQ(stroke, (Boxes{{15, 44, 25, 54}}));
    move({24.0, 50.5});  // less than half a brush
    EXPECT_THAT(taken(), ElementsAre("begun"));
    move({36.5, 50.5});  // three dabs more, each five on
    release({36.5, 50.5});
    EXPECT_EQ(stroke, (Boxes{{15, 44, 25, 54}, {20, 44, 30, 54}, {25, 44, 35, 54}, {30, 44, 40, 54}}));
    EXPECT_THAT(taken(), ElementsAre("moved", "ended"));
    // There and back again: nothing twice.
    press({20.5, 50.5});
    move({25.5, 50.5});
    move({20.5, 50.5});
    release({20.5, 50.5});
    EXPECT_EQ(stroke, (Boxes{{15, 44, 25, 54}, {20, 44, 30, 54}}));
    // Aslant and odd: (30.5, 70.5), then each 1.5 along 3 right and 4 down.
    paint_with(3);
    drag({30.5, 29.5}, {33.5, 33.5});
    EXPECT_EQ(stroke, (Boxes{{29, 69, 32, 72}, {30, 68, 33, 71}, {31, 67, 34, 70}, {32, 65, 35, 68}}));
}

TEST_F(Tools, BrushStaysInTheFrame) {
    paint_with(10);
    look(1.0, {0.0, 0.0});  // the frame's corner in the middle
    drag({102.5, 47.5}, {102.5, 47.5});
    EXPECT_EQ(stroke, (Boxes{{0, 0, 7, 7}}));
    taken();
    drag({50, 80}, {60, 80});  // outside all the time
    EXPECT_THAT(taken(), ElementsAre("begun", "cancelled"));
    press({120, 40});
    key(Qt::Key_Escape);
    move({130, 40});
    release({130, 40});
    EXPECT_THAT(taken(), ElementsAre("begun", "cancelled"));
    press({120, 40});
    area.set_tool(PointerTool::kNavigate);
    release({120, 40});
    EXPECT_THAT(taken(), ElementsAre("begun", "cancelled"));
}

TEST_F(Tools, BrushesSizeFollowsKeysAndWheel) {
    paint_with(16);
    key(Qt::Key_BracketRight, Qt::ControlModifier);
    EXPECT_EQ(area.brush_size(), 18);
    wheel({50, 50}, {0, -120}, {}, Qt::ShiftModifier);
    wheel({50, 50}, {120, 0}, {}, Qt::ShiftModifier);  // as some platforms turn it
    EXPECT_EQ(area.brush_size(), 18);
    for (int n = 0; n < 99; ++n) key(Qt::Key_BracketLeft, Qt::ControlModifier);
    EXPECT_EQ(area.brush_size(), 1);
    EXPECT_EQ(zoom(), 1.0);
    // The square that a click would mark, around the pointer's pixel.
    paint_with(20);
    move({60.5, 50.5});
    const QRgb edge = seen({50.0, 54.5}), inside = seen({60.5, 50.5}), outside = seen({46.0, 50.5});
    EXPECT_NE(edge, kSurround);
    EXPECT_EQ(inside, kSurround);
    EXPECT_EQ(outside, kSurround);
}

TEST_F(Tools, KeysAloneUseEveryTool) {
    paint_with(4);
    key(Qt::Key_Left);  // shows the crosshair in the middle, in pixel (100, 50)
    key(Qt::Key_Left);
    key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_THAT(area.accessibleDescription().toStdString(), HasSubstr("Crosshair at 99, 60."));
    EXPECT_THAT(area.accessibleDescription().toStdString(), HasSubstr("brush of 4 pixels"));
    key(Qt::Key_Space);
    EXPECT_THAT(taken(), ElementsAre("begun", "ended"));
    EXPECT_EQ(stroke, (Boxes{{97, 58, 101, 62}}));
    key(Qt::Key_Return);
    EXPECT_EQ(told.size(), 2U);
    EXPECT_EQ(centre(), (Point{100.0, 50.0}));
    for (int n = 0; n < 12; ++n) key(Qt::Key_Right, Qt::ShiftModifier);  // to 219, which is beyond the edge
    EXPECT_NEAR(centre().x, 219.5 - 100.0 + 1.0 / ratio(), 1e-9) << "the picture comes along";

    area.set_tool(PointerTool::kBox);
    key(Qt::Key_Space);
    key(Qt::Key_Left);
    key(Qt::Key_Down);
    key(Qt::Key_Enter);
    key(Qt::Key_Down);
    EXPECT_EQ(boxes, (Boxes{{219, 60, 220, 61}, {218, 60, 220, 61}, {218, 59, 220, 61}}));
    area.set_tool(PointerTool::kPick);
    boxes.clear();
    key(Qt::Key_Enter);
    EXPECT_EQ(boxes, (Boxes{{218, 58, 0, 0}}));
}

TEST_F(Tools, BoxesHoldBothEndsAndPicksArePixels) {
    area.set_tool(PointerTool::kBox);
    look(4.0, {10.0, 10.0});    // the point (x, y) shows (x / 4 - 15, 22.5 - y / 4)
    drag({101, 41}, {70, 53});  // from pixel (10, 12) to (2, 9)
    EXPECT_EQ(boxes, (Boxes{{10, 12, 11, 13}, {2, 9, 11, 13}}));
    const QRgb border = seen({68.0, 46.0});
    EXPECT_NE(border, kSurround) << "its left edge";
    press({20, 20});
    key(Qt::Key_Escape);
    release({20, 20});
    EXPECT_EQ(boxes.back(), (Box{2, 9, 11, 13})) << "the one before";
    area.set_tool(PointerTool::kPick);
    boxes.clear();
    click({57, 91});
    EXPECT_EQ(boxes, (Boxes{{-1, -1, 0, 0}}));
}

}  // namespace
