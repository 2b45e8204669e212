#include <QDropEvent>
#include <QGestureEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QWheelEvent>
#include <cmath>

#include "area/Marks.h"
#include "area/PictureArea.h"
#include "area/PointerMode.h"

namespace veloxa::viewer {

namespace {

constexpr double kNotch = 120.0;  // of a wheel, as Qt counts
constexpr double kZoomStep = 1.25;
constexpr double kLineReach = 6.0;  // the screen's points
constexpr double kHandleReach = 14.0;

QStringList local_files(const QMimeData& data) {
    QStringList paths;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) paths << url.toLocalFile();
    }
    return paths;
}

}  // namespace

PointerAt PictureArea::at(QPointF device) const {
    const Pane pane = held_ == Held::kNothing ? room().at(device) : held_pane_;
    const QPointF place = device - room().origin(pane);
    const Point area{place.x(), place.y()};
    return {area, geometry_.to_picture(area)};
}

void PictureArea::zoom_at(double factor, QPointF device) {
    move_to(geometry_.zoomed(geometry_.zoom * factor, at(device).area), false);
}

// While a tool is in hand the handle alone moves the line.
bool PictureArea::on_line(QPointF device) const {
    if (panes_ != Panes::kWipe) return false;
    const double across = std::abs(device.x() - room().line());
    if (!mode().aims()) return across <= kLineReach * ratio();
    const double along = device.y() - 0.5 * device_size().height();
    return std::hypot(across, along) <= kHandleReach * ratio();
}

void PictureArea::resizeEvent(QResizeEvent* /*event*/) {
    fill_room();
    place_message();
}

void PictureArea::mousePressEvent(QMouseEvent* event) {
    if (held_ != Held::kNothing) return;
    const QPointF place = device(event->position());
    const bool main = event->button() == Qt::LeftButton;
    if (event->button() == Qt::MiddleButton || (main && (space_ || (!mode().aims() && !on_line(place))))) {
        space_used_ = space_;
        held_ = Held::kPicture;
    } else if (main && on_line(place)) {
        held_ = Held::kWipe;
    } else if (main) {
        held_ = Held::kMode;
    } else {
        event->ignore();
        return;
    }
    held_by_ = event->button();
    held_pane_ = room().at(place);
    held_at_ = place;
    show_cursor();
    if (held_ != Held::kMode) return;
    if (event->type() == QEvent::MouseButtonDblClick) {
        mode().double_click(at(place));
    } else {
        mode().press(at(place));
    }
}

void PictureArea::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton) {
        fit();
    } else {
        mousePressEvent(event);
    }
}

void PictureArea::mouseMoveEvent(QMouseEvent* event) {
    const QPointF place = device(event->position());
    if (held_ == Held::kPicture) {
        const QPointF by = place - held_at_;
        held_at_ = place;
        move_to(geometry_.panned(by.x(), by.y()), false);
    } else if (held_ == Held::kWipe) {
        set_wipe(place.x() / std::max(device_size().width(), 1));
    } else {
        if (crosshair_) {
            crosshair_.reset();
            describe();
            update();
        }
        mode().move(at(place));
        if (held_ == Held::kNothing) setCursor(on_line(place) ? Qt::SplitHCursor : mode().cursor());
    }
    emit hovered(to_qt(at(place).picture));
}

void PictureArea::mouseReleaseEvent(QMouseEvent* event) {
    if (held_ == Held::kNothing || event->button() != held_by_) return;
    const PointerAt place = at(device(event->position()));
    const bool used = held_ == Held::kMode;
    held_ = Held::kNothing;
    show_cursor();
    if (used) mode().release(place);
}

void PictureArea::leaveEvent(QEvent* /*event*/) {
    mode().leave();
    emit left();
}

void PictureArea::focusOutEvent(QFocusEvent* event) {
    space_ = false;
    show_cursor();
    QWidget::focusOutEvent(event);
}

void PictureArea::wheelEvent(QWheelEvent* event) {
    const QPoint angle = event->angleDelta();
    // With modifiers some platforms turn it into the other direction.
    const double notches = (angle.y() != 0 ? angle.y() : angle.x()) / kNotch;
    event->accept();
    if (mode().wheel(notches, event->modifiers())) {
        describe();
    } else if (!event->pixelDelta().isNull() && !(event->modifiers() & Qt::ControlModifier)) {
        const QPointF by = QPointF(event->pixelDelta()) * ratio();
        move_to(geometry_.panned(by.x(), by.y()), false);
    } else {
        zoom_at(std::pow(kZoomStep, notches), device(event->position()));
    }
}

bool PictureArea::native_gesture(QEvent* event) {
    auto& native = static_cast<QNativeGestureEvent&>(*event);
    if (native.gestureType() != Qt::ZoomNativeGesture) return false;
    zoom_at(std::max(1.0 + native.value(), 0.1), device(native.position()));
    return true;
}

bool PictureArea::gesture(QGestureEvent* event) {
    auto* const pinch = static_cast<QPinchGesture*>(event->gesture(Qt::PinchGesture));
    if (!pinch) return false;
    if (pinch->changeFlags() & QPinchGesture::ScaleFactorChanged) {
        zoom_at(pinch->scaleFactor(), device(mapFromGlobal(pinch->centerPoint())));
    }
    return true;
}

bool PictureArea::event(QEvent* event) {
    // Its text is for those who look it up; shown, it would cover what is looked at.
    if (event->type() == QEvent::ToolTip) return true;
    if (event->type() == QEvent::NativeGesture && native_gesture(event)) return true;
    // What is begun goes before what a shortcut would leave.
    if (event->type() == QEvent::ShortcutOverride && mode().begun() &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::Gesture && gesture(static_cast<QGestureEvent*>(event))) return true;
    return QWidget::event(event);
}

void PictureArea::dragEnterEvent(QDragEnterEvent* event) {
    if (!local_files(*event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void PictureArea::dropEvent(QDropEvent* event) {
    const QStringList paths = local_files(*event->mimeData());
    if (paths.isEmpty()) return;
    event->acceptProposedAction();
    emit filesDropped(paths);
}

}  // namespace veloxa::viewer
