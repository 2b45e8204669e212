// A slider over a range of numbers. A press jumps to its place and drags from there; what comes from press to
// release, or while an arrow key is held, is one edit. The wheel turns it only while it has the focus.
#pragma once

#include <QSlider>

#include "ZoImage/Knob.h"

namespace veloxa::viewer {

class KnobSlider : public QSlider {
    Q_OBJECT

  public:
    explicit KnobSlider(Zo::Image::KnobRange range, QWidget* parent = nullptr);

    // Shows it, beyond the range at the nearer end; not while the user drags.
    void set_value(double value);
    double step() const;  // of an arrow key

  signals:
    void begun();
    void moved(double value);
    void ended();

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    void begin();
    void end();
    void let_go();
    int tick_at(const QPointF& place) const;

    Zo::Image::KnobRange range_;
    double ticks_per_unit_;
    bool editing_ = false;
    int grip_ = 0;  // where on the handle it was pressed
};

}  // namespace veloxa::viewer
