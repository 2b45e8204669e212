#include "area/BrushMode.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>

#include "area/PictureArea.h"

namespace veloxa::viewer {

using Zo::Image::Box;

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
    const PixelAt middle = pixel_at(picture);
    const int left = middle.x - size_ / 2;
    const int bottom = middle.y - size_ / 2;
    return {left, bottom, left + size_, bottom + size_};
}

void BrushMode::dab(Point picture) {
    last_ = picture;
    Box area = square(picture);
    area.intersect(area_.format().box);
    if (!area.empty() && std::ranges::find(areas_, area) == areas_.end()) areas_.push_back(area);
}

void BrushMode::press(const PointerAt& at) {
    drawing_ = true;
    areas_.clear();
    hover_ = at.picture;
    dab(at.picture);
    area_.update();
    emit area_.strokeBegun(areas_);
}

void BrushMode::move(const PointerAt& at) {
    hover_ = at.picture;
    area_.update();
    if (!drawing_) return;
    const double spacing = std::max(1.0, 0.5 * size_);
    const std::size_t before = areas_.size();
    const Point from = last_;
    const double dx = at.picture.x - from.x;
    const double dy = at.picture.y - from.y;
    const double length = std::hypot(dx, dy);
    for (int n = 1; n * spacing <= length; ++n) {
        const double share = n * spacing / length;
        dab({from.x + dx * share, from.y + dy * share});
    }
    if (areas_.size() != before) emit area_.strokeMoved(areas_);
}

void BrushMode::release(const PointerAt& at) {
    if (!drawing_) return;
    move(at);
    drawing_ = false;
    area_.update();
    if (areas_.empty()) {
        emit area_.strokeCancelled();
    } else {
        emit area_.strokeEnded(areas_);
    }
    areas_.clear();
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
    areas_.clear();
    area_.update();
    emit area_.strokeCancelled();
    return true;
}

void BrushMode::paint(QPainter& painter, const Geometry& geometry, double ratio) const {
    for (const Box& area : areas_) painter.fillRect(to_area(geometry, area), QColor(255, 200, 0, 60));
    if (hover_) draw_box(painter, to_area(geometry, square(*hover_)), Qt::white, ratio);
}

}  // namespace veloxa::viewer
