#include <QKeyEvent>
#include <algorithm>
#include <cmath>

#include "area/Marks.h"
#include "area/PictureArea.h"
#include "area/PointerMode.h"

namespace veloxa::viewer {

namespace {

constexpr double kZoomStep = 1.25;
constexpr double kPan = 40.0;  // the screen's points
constexpr double kFarPan = 200.0;
constexpr double kAim = 1.0;  // pixels of the picture
constexpr double kFarAim = 10.0;
constexpr double kWipe = 0.01;
constexpr double kFarWipe = 0.1;

struct Direction {
    double right = 0.0;
    double up = 0.0;
};

std::optional<Direction> direction_of(int key) {
    switch (key) {
        case Qt::Key_Left:
            return Direction{-1.0, 0.0};
        case Qt::Key_Right:
            return Direction{1.0, 0.0};
        case Qt::Key_Up:
            return Direction{0.0, 1.0};
        case Qt::Key_Down:
            return Direction{0.0, -1.0};
        default:
            return std::nullopt;
    }
}

Point middle_of(Point picture) {
    return {std::floor(picture.x) + 0.5, std::floor(picture.y) + 0.5};
}

}  // namespace

PointerAt PictureArea::aimed() const {
    return {geometry_.to_area(*crosshair_), *crosshair_};
}

// The crosshair begins in the middle of what is seen, and takes the picture along at the edges.
void PictureArea::aim(double right, double up) {
    if (crosshair_) {
        crosshair_ = Point{crosshair_->x + right, crosshair_->y + up};
    } else {
        crosshair_ = middle_of(geometry_.to_picture({0.5 * geometry_.width, 0.5 * geometry_.height}));
    }
    const Point there = geometry_.to_area(*crosshair_);
    const double x = std::clamp(there.x, 0.0, std::max(0.0, geometry_.width - 1.0));
    const double y = std::clamp(there.y, 0.0, std::max(0.0, geometry_.height - 1.0));
    if (x != there.x || y != there.y) move_to(geometry_.panned(x - there.x, y - there.y), false);
    mode().move(aimed());
    describe();
    update();
    emit hovered(to_qt(*crosshair_));
}

bool PictureArea::act() {
    if (!crosshair_ || held_ != Held::kNothing) return false;
    mode().act(aimed());
    return true;
}

bool PictureArea::arrow(const QKeyEvent& event) {
    const auto direction = direction_of(event.key());
    if (!direction || event.modifiers() & Qt::ControlModifier) return false;
    const bool far = event.modifiers() & Qt::ShiftModifier;
    if (event.modifiers() & Qt::AltModifier) {
        if (panes_ != Panes::kWipe || direction->right == 0.0) return false;
        set_wipe(wipe_ + direction->right * (far ? kFarWipe : kWipe));
    } else if (!mode().aims()) {
        const double step = (far ? kFarPan : kPan) * ratio();
        move_to(geometry_.panned(-step * direction->right, step * direction->up), false);
    } else if (held_ == Held::kNothing) {
        const double step = far ? kFarAim : kAim;
        aim(step * direction->right, step * direction->up);
    }
    return true;
}

bool PictureArea::view_key(const QKeyEvent& event) {
    if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
    switch (event.key()) {
        case Qt::Key_F:
            fit();
            return true;
        case Qt::Key_1:
            show_one_to_one();
            return true;
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            zoom_by(kZoomStep);
            return true;
        case Qt::Key_Minus:
            zoom_by(1.0 / kZoomStep);
            return true;
        default:
            return false;
    }
}

void PictureArea::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    bool used = false;
    if (key == Qt::Key_Space) {
        if (!event->isAutoRepeat()) {
            space_ = true;
            space_used_ = false;
            show_cursor();
        }
        used = true;
    } else if (key == Qt::Key_Escape) {
        used = mode().cancel();
        if (used && held_ == Held::kMode) held_ = Held::kNothing;
    } else if (mode().key(*event)) {
        describe();
        used = true;
    } else {
        used =
            arrow(*event) || view_key(*event) || ((key == Qt::Key_Return || key == Qt::Key_Enter) && act());
    }
    if (!used) QWidget::keyPressEvent(event);
}

// Only when it comes up is it known that no drag came with it.
void PictureArea::keyReleaseEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Space) {
        QWidget::keyReleaseEvent(event);
        return;
    }
    if (event->isAutoRepeat() || !space_) return;
    space_ = false;
    show_cursor();
    if (!space_used_) act();
}

}  // namespace veloxa::viewer
