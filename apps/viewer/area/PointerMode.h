// What the left button and the keys of the crosshair do in the picture. One of each kind belongs to the area.
#pragma once

#include <QKeyEvent>
#include <QPainter>
#include <QString>

#include "picture/Geometry.h"

namespace veloxa::viewer {

class PictureArea;

struct PointerAt {
    Point area;  // device pixels from the top left corner of the pane
    Point picture;
};

class PointerMode {
  public:
    explicit PointerMode(PictureArea& area) : area_(area) {}
    virtual ~PointerMode() = default;
    PointerMode(const PointerMode&) = delete;
    PointerMode& operator=(const PointerMode&) = delete;

    // What is told to who cannot see it: what the mode does and its keys.
    virtual QString help() const = 0;
    virtual Qt::CursorShape cursor() const { return Qt::CrossCursor; }
    // Whether arrow keys move a crosshair, rather than the picture, and the left button is the mode's own.
    virtual bool aims() const { return true; }

    virtual void press(const PointerAt& /*at*/) {}
    virtual void move(const PointerAt& /*at*/) {}  // held or not, the crosshair's moves too
    virtual void release(const PointerAt& /*at*/) {}
    virtual void double_click(const PointerAt& at) { press(at); }
    virtual void leave() {}
    // Space or Enter at the crosshair.
    virtual void act(const PointerAt& /*at*/) {}
    // These are true where the event was theirs.
    virtual bool key(const QKeyEvent& /*event*/) { return false; }
    virtual bool wheel(double /*notches*/, Qt::KeyboardModifiers /*modifiers*/) { return false; }
    // Whether Escape has something to give up.
    virtual bool begun() const { return false; }
    // Gives up what is begun and not ended.
    virtual bool cancel() { return false; }

    // Over the picture, in device pixels of the pane, of which `ratio` go to one of the screen's points.
    virtual void paint(QPainter& /*painter*/, const Geometry& /*geometry*/, double /*ratio*/) const {}

  protected:
    PictureArea& area_;
};

}  // namespace veloxa::viewer
