#include "picture/Geometry.h"

#include <gmock/gmock.h>

#include <vector>

using namespace veloxa::viewer;
using Zo::Image::Box;

namespace {

TEST(Geometry, PlacesMeetThosePixels) {
    // An area of 800 by 600 with the picture's (100, 50) in its middle.
    const struct {
        const char* what;
        double zoom, aspect;
        Point area, picture;
    } rows[] = {
        {"the middle", 1.0, 1.0, {400.0, 300.0}, {100.0, 50.0}},
        {"left and up at 1:1", 1.0, 1.0, {390.0, 280.0}, {90.0, 70.0}},
        {"enlarged", 4.0, 1.0, {408.0, 300.0}, {102.0, 50.0}},
        {"reduced", 0.25, 1.0, {400.0, 310.0}, {100.0, 10.0}},
        {"wide pixels", 2.0, 2.0, {408.0, 304.0}, {102.0, 48.0}},
    };
    for (const auto& row : rows) {
        const Geometry geometry{800, 600, row.zoom, row.aspect, {100.0, 50.0}};
        EXPECT_EQ(geometry.to_picture(row.area), row.picture) << row.what;
        EXPECT_EQ(geometry.to_area(row.picture), row.area) << row.what;
    }
}

TEST(Geometry, FitsWhatItsAreaAndFormatAllow) {
    const struct {
        Box frame;
        double aspect;
        double zoom;
        Point centre;
        Point corner;  // where the frame's top left corner comes to lie
    } rows[] = {
        {{0, 0, 400, 200}, 1.0, 2.0, {200.0, 100.0}, {0.0, 100.0}},   // as wide as the area
        {{0, 0, 200, 400}, 1.0, 1.5, {100.0, 200.0}, {250.0, 0.0}},   // as high
        {{0, 0, 400, 200}, 2.0, 1.0, {200.0, 100.0}, {0.0, 200.0}},   // wide pixels
        {{10, 20, 12, 22}, 1.0, 64.0, {11.0, 21.0}, {336.0, 236.0}},  // no closer than that
    };
    for (const auto& row : rows) {
        const Geometry geometry = Geometry{800, 600, 1.0, 1.0, {}}.fitted({row.frame, row.aspect});
        EXPECT_EQ(geometry.zoom, row.zoom);
        EXPECT_EQ(geometry.centre, row.centre);
        const Point corner{1.0 * row.frame.x, 1.0 * row.frame.t};
        EXPECT_EQ(geometry.to_area(corner), row.corner);
    }
}

TEST(Geometry, ZoomingHoldsThePlaceAndPanningMovesTheAreasPixels) {
    const Geometry start{801, 600, 0.8, 1.5, {123.25, -7.5}};
    const Point place{37.0, 511.0};
    const Point held = start.to_picture(place);
    for (const double zoom : {1e-9, 0.3, 1.0, 7.0, 1e9}) {
        const Geometry geometry = start.zoomed(zoom, place);
        EXPECT_EQ(geometry.zoom, std::clamp(zoom, kLeastZoom, kMostZoom));
        EXPECT_NEAR(geometry.to_picture(place).x, held.x, 1e-9);
        EXPECT_NEAR(geometry.to_picture(place).y, held.y, 1e-9);
        const Point moved = geometry.panned(-12.0, 34.0).to_area(held);
        EXPECT_NEAR(moved.x, place.x - 12.0, 1e-6);
        EXPECT_NEAR(moved.y, place.y + 34.0, 1e-6);
    }
}

TEST(Geometry, CutPixelsAreVisibleAndTheFarAwayIsNot) {
    const Box whole{0, 0, 1000, 1000};
    EXPECT_EQ((Geometry{9, 9, 2.0, 1.0, {100.0, 100.0}}.visible(whole)), (Box{97, 97, 103, 103}));
    EXPECT_EQ((Geometry{10, 10, 1.0, 1.0, {0.0, 1000.0}}.visible(whole)), (Box{0, 995, 5, 1000}));
    EXPECT_TRUE((Geometry{10, 10, 1.0, 1.0, {1e300, 0.0}}.visible(whole).empty()));
}

}  // namespace
