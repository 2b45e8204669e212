#include <array>
#include <vector>

#include "AreaRig.h"

using namespace test;
using testing::ElementsAre;

namespace {

using Points = std::vector<std::array<double, 2>>;

// A garbage square from (20, 20) to (60, 60).
class Matte : public AreaRig {
  protected:
    Matte() {
        area.set_tool(PointerTool::kPolygon);
        area.set_mattes({square()});
        QObject::connect(&area, &PictureArea::mattesChanged,
                         [this](const DrawnMattes& changed, const QString& what, bool dragging) {
                             EXPECT_EQ(changed, area.mattes());
                             told.push_back((dragging ? "~" : "") + what.toStdString());
                         });
    }
    static DrawnMatte square() {
        DrawnMatte matte;
        matte.points = {{20, 20}, {60, 20}, {60, 60}, {20, 60}};
        return matte;
    }
    const Points& points(std::size_t n) const { return area.mattes().at(n).points; }
};

TEST_F(Matte, ClicksDrawOneAndThreeWaysCloseIt) {
    DrawnMatte like;
    like.kind = DrawnMatte::Kind::kHoldout;
    like.outside = true;
    like.feather = 7.0;
    area.set_new_matte(like);
    const Points triangle{{100, 80}, {140, 80}, {140, 50}};
    const QPointF first(102, 22), last(140, 50);
    const auto double_click = [&] {
        mouse(QEvent::MouseButtonDblClick, last);
        release(last);
    };
    const std::pair<const char*, std::function<void()>> ways[]{
        {"first point", [&] { click(first); }},
        {"Enter", [&] { key(Qt::Key_Return); }},
        {"double click", double_click},
    };
    for (const auto& [way, close] : ways) {
        area.set_mattes({square()});
        click({100, 20});
        click({140, 20});
        key(Qt::Key_Return);  // not yet
        click(last);
        EXPECT_TRUE(told.empty());
        close();
        EXPECT_THAT(taken(), ElementsAre("Draw holdout matte")) << way;
        ASSERT_EQ(area.mattes().size(), 2U) << way;
        like.points = triangle;
        EXPECT_EQ(area.mattes().back(), like) << way;
    }
    click({170, 20});
    click({190, 20});
    click({190, 50});
    key(Qt::Key_Delete);  // the last point
    key(Qt::Key_Return);
    key(Qt::Key_Escape);  // all of it
    key(Qt::Key_Return);
    EXPECT_TRUE(told.empty());
    EXPECT_EQ(area.mattes().size(), 2U);
}

TEST_F(Matte, PointsAndLinesAreDraggedAndDeleted) {
    press({59, 41});  // near (60, 60)
    move({64, 36});
    EXPECT_EQ(points(0)[2], (std::array<double, 2>{65, 65}));
    release({69, 31});
    EXPECT_THAT(taken(), ElementsAre("~Move point", "~Move point", "Move point"));
    EXPECT_EQ(points(0), (Points{{20, 20}, {60, 20}, {70, 70}, {20, 60}}));

    press({18, 60});  // beside the left line
    move({28, 50});
    key(Qt::Key_Escape);
    release({28, 50});
    EXPECT_THAT(taken(), ElementsAre("~Move matte", "Give up move"));
    EXPECT_EQ(points(0), (Points{{20, 20}, {60, 20}, {70, 70}, {20, 60}}));
    drag({18, 60}, {28, 50});
    EXPECT_EQ(points(0), (Points{{30, 30}, {70, 30}, {80, 80}, {30, 70}}));
    EXPECT_EQ(taken().back(), "Move matte");

    click({80, 20});
    EXPECT_TRUE(told.empty()) << "chosen, not moved";
    key(Qt::Key_Delete);
    EXPECT_EQ(points(0), (Points{{30, 30}, {70, 30}, {30, 70}}));
    key(Qt::Key_Delete);  // nothing is chosen
    EXPECT_EQ(area.mattes().size(), 1U);
    click({50, 70});
    key(Qt::Key_Delete);
    EXPECT_TRUE(area.mattes().empty());
    EXPECT_THAT(taken(), ElementsAre("Delete point", "Delete matte"));
}

TEST_F(Matte, KeysAloneDrawAndMove) {
    look(1.0, {20.0, 20.0});
    key(Qt::Key_Left);  // a crosshair in pixel (20, 20), which is at the first point
    key(Qt::Key_Space);
    key(Qt::Key_Right, Qt::ShiftModifier);
    key(Qt::Key_Space);
    key(Qt::Key_Up, Qt::ShiftModifier);  // let go
    EXPECT_THAT(taken(), ElementsAre("~Move point", "~Move point", "Move point"));
    EXPECT_EQ(points(0)[0], (std::array<double, 2>{30, 20}));
    for (const Qt::Key turn : {Qt::Key_Down, Qt::Key_Left, Qt::Key_Down}) {
        for (int n = 0; n < 3; ++n) key(turn, Qt::ShiftModifier);
        key(Qt::Key_Space);
    }
    key(Qt::Key_Return);
    EXPECT_THAT(taken(), ElementsAre("Draw garbage matte"));
    EXPECT_EQ(points(1), (Points{{30.5, 0.5}, {0.5, 0.5}, {0.5, -29.5}}));
}

TEST_F(Matte, LinesPointsAndFeatherAreSeenInTheColourOfTheirKind) {
    area.clearFocus();
    const auto tells = [&](QPointF place, auto red, auto blue) {
        const QRgb pixel = seen(place);
        EXPECT_THAT(qRed(pixel), red) << place.x();
        EXPECT_THAT(qBlue(pixel), blue) << place.x();
    };
    const int surround = qRed(kSurround);
    tells({20.0, 80.0}, testing::Gt(200), testing::Lt(120));          // a point
    tells({20.0, 60.0}, testing::Gt(2 * surround), testing::Gt(20));  // a line
    tells({30.0, 60.0}, testing::Eq(surround), testing::Eq(surround));
    DrawnMatte soft = square();
    soft.feather = 30.0;
    soft.kind = DrawnMatte::Kind::kHoldout;
    area.set_mattes({soft});
    tells({30.0, 60.0}, testing::Gt(surround), testing::Gt(2 * surround));  // within 15 of it
    tells({38.0, 60.0}, testing::Eq(surround), testing::Eq(surround));
    tells({20.0, 80.0}, testing::Lt(120), testing::Gt(200));
}

}  // namespace
