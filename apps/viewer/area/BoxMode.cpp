#include "area/BoxMode.h"

#include <QCoreApplication>
#include <algorithm>

#include "area/PictureArea.h"

namespace veloxa::viewer {

QString BoxMode::help() const {
    return QCoreApplication::translate("PictureArea",
                                       "Drag a box for the values in it. Arrow keys move a crosshair, with "
                                       "Shift further; Space or Enter begins a box there and ends it.");
}

void BoxMode::span(const PointerAt& at) {
    const PixelAt to = pixel_at(at.picture);
    const Zo::Image::Box box{std::min(from_->x, to.x), std::min(from_->y, to.y), std::max(from_->x, to.x) + 1,
                             std::max(from_->y, to.y) + 1};
    if (box == box_) return;
    box_ = box;
    area_.update();
    emit area_.boxDragged(box_);
}

void BoxMode::press(const PointerAt& at) {
    before_ = box_;
    from_ = pixel_at(at.picture);
    span(at);
}

void BoxMode::move(const PointerAt& at) {
    if (from_) span(at);
}

void BoxMode::release(const PointerAt& at) {
    if (!from_) return;
    span(at);
    from_.reset();
}

void BoxMode::act(const PointerAt& at) {
    if (from_) {
        release(at);
    } else {
        press(at);
    }
}

bool BoxMode::cancel() {
    if (!from_) return false;
    from_.reset();
    box_ = before_;
    area_.update();
    emit area_.boxDragged(box_);
    return true;
}

void BoxMode::paint(QPainter& painter, const Geometry& geometry, double ratio) const {
    if (!box_.empty()) draw_box(painter, to_area(geometry, box_), Qt::white, ratio);
}

}  // namespace veloxa::viewer
