#include "area/BrushMode.h"

#include <QCoreApplication>
#include <algorithm>

#include "area/PictureArea.h"

namespace veloxa::viewer {

using Zo::Image::Box;
using Zo::Image::BrushStroke;

QString BrushMode::help() const {
    return QCoreApplication::translate("PictureArea",
                                       "Drag to mark the picture with a brush of %n pixels; Ctrl+[ and "
                                       "Ctrl+] or Shift and the wheel change its size, Escape gives a stroke "
                                       "up. Arrow keys move a crosshair, with Shift further; Space or Enter "
                                       "marks the picture there.",
                                       nullptr, size_);
}

void BrushMode::set_size(int size) {
    const int clamped = std::clamp(size, kLeastBrush, kMostBrush);
    if (clamped == size_) return;
    size_ = clamped;
    area_.update();
    emit area_.brushSizeChanged(size_);
}

Box BrushMode::square(Point picture) const {
    return BrushStroke::square(picture.x, picture.y, size_);
}

void BrushMode::press(const PointerAt& at) {
    drawing_ = true;
    hover_ = at.picture;
    stroke_.begin(at.picture.x, at.picture.y, size_, area_.format().box);
    area_.update();
    emit area_.strokeBegun(stroke_.areas());
}

void BrushMode::move(const PointerAt& at) {
    hover_ = at.picture;
    area_.update();
    if (drawing_ && stroke_.move(at.picture.x, at.picture.y)) emit area_.strokeMoved(stroke_.areas());
}

void BrushMode::release(const PointerAt& at) {
    if (!drawing_) return;
    move(at);
    drawing_ = false;
    area_.update();
    if (stroke_.areas().empty()) {
        emit area_.strokeCancelled();
    } else {
        emit area_.strokeEnded(stroke_.areas());
    }
    stroke_.clear();
}

void BrushMode::leave() {
    if (drawing_) return;
    hover_.reset();
    area_.update();
}

void BrushMode::act(const PointerAt& at) {
    if (drawing_) return;
    press(at);
    release(at);
}

void BrushMode::change_size(int steps) {
    set_size(size_ + steps * std::max(1, size_ / 8));
}

bool BrushMode::key(const QKeyEvent& event) {
    if (!(event.modifiers() & Qt::ControlModifier)) return false;
    if (event.key() != Qt::Key_BracketLeft && event.key() != Qt::Key_BracketRight) return false;
    change_size(event.key() == Qt::Key_BracketLeft ? -1 : 1);
    return true;
}

bool BrushMode::wheel(double notches, Qt::KeyboardModifiers modifiers) {
    if (!(modifiers & Qt::ShiftModifier)) return false;
    if (notches != 0.0) change_size(notches > 0.0 ? 1 : -1);
    return true;
}

bool BrushMode::cancel() {
    if (!drawing_) return false;
    drawing_ = false;
    stroke_.clear();
    area_.update();
    emit area_.strokeCancelled();
    return true;
}

void BrushMode::paint(QPainter& painter, const Geometry& geometry, double ratio) const {
    for (const Box& area : stroke_.areas())
        painter.fillRect(to_area(geometry, area), QColor(255, 200, 0, 60));
    if (hover_) draw_box(painter, to_area(geometry, square(*hover_)), Qt::white, ratio);
}

}  // namespace veloxa::viewer
