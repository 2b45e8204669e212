// A picture area on a screen that nobody sees, and a hand at its pointer and keys.
//
// Places are the screen's points: with a zoom of 1 a point is a pixel of the picture, however many device
// pixels go to it.
#pragma once

#include <gmock/gmock.h>

#include <QApplication>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QTest>
#include <QWheelEvent>
#include <string>
#include <utility>
#include <vector>

#include "area/PictureArea.h"

namespace test {

using namespace veloxa;
using namespace veloxa::viewer;
using Zo::Image::Box;

class AreaRig : public testing::Test {
  protected:
    // 200 by 100 points; the picture of 400 by 300 has its (100, 50) in the middle, so that the point
    // (x, y) shows its (x, 100 - y).
    AreaRig() {
        area.resize(200, 100);
        area.show();
        area.set_format({{0, 0, 400, 300}, 1.0});
        look(1.0, {100.0, 50.0});
    }

    void look(double zoom, Point centre) {
        Geometry geometry = area.picture_geometry();
        geometry.zoom = zoom * ratio();
        geometry.centre = centre;
        area.set_picture_geometry(geometry);
    }
    double ratio() const { return area.devicePixelRatioF(); }
    double zoom() const { return area.picture_geometry().zoom / ratio(); }
    Point centre() const { return area.picture_geometry().centre; }

    void mouse(QEvent::Type type, QPointF place, Qt::MouseButton button = Qt::LeftButton) {
        const bool moves = type == QEvent::MouseMove;
        QMouseEvent event(type, place, area.mapToGlobal(place), moves ? Qt::NoButton : button, button, {});
        QApplication::sendEvent(&area, &event);
    }
    void press(QPointF place, Qt::MouseButton button = Qt::LeftButton) {
        mouse(QEvent::MouseButtonPress, place, button);
    }
    void move(QPointF place) { mouse(QEvent::MouseMove, place); }
    void release(QPointF place, Qt::MouseButton button = Qt::LeftButton) {
        mouse(QEvent::MouseButtonRelease, place, button);
    }
    void click(QPointF place) {
        press(place);
        release(place);
    }
    void drag(QPointF from, QPointF to, Qt::MouseButton button = Qt::LeftButton) {
        press(from, button);
        move(to);
        release(to, button);
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&area, key, modifiers); }
    void wheel(QPointF place, QPoint angle, QPoint pixels = {}, Qt::KeyboardModifiers modifiers = {}) {
        QWheelEvent event(place, area.mapToGlobal(place), pixels, angle, {}, modifiers, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(&area, &event);
    }
    QImage seen() { return area.grab().toImage(); }
    // At a place in points.
    QRgb seen(QPointF place) { return seen().pixel((place * ratio()).toPoint()); }

    // What was told since this was asked last.
    std::vector<std::string> taken() { return std::exchange(told, {}); }

    PictureArea area;
    std::vector<std::string> told;
};

}  // namespace test
