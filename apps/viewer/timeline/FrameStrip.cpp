#include "timeline/FrameStrip.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

namespace veloxa::viewer {

namespace {

constexpr int kFarStep = 10;
constexpr int kWheelStep = 120;  // eighths of a degree

}  // namespace

FrameStrip::FrameStrip(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(tr("Time line"));
    setToolTip(tr("Frames of the shot; click, drag or use the arrow keys to go to one"));
    set_range({});
}

QSize FrameStrip::sizeHint() const {
    return {600, 2 * fontMetrics().height() + 14};
}

QSize FrameStrip::minimumSizeHint() const {
    return {120, sizeHint().height()};
}

void FrameStrip::set_range(const FrameRange& range) {
    range_ = range;
    range_.step = std::max(range_.step, 1);
    range_.last = std::max(range_.first, range_.last);
    known_.clear();
    worst_.reset();
    set_current(range_.first);
    update();
}

std::optional<int> FrameStrip::index(int frame) const {
    const std::int64_t offset = static_cast<std::int64_t>(frame) - range_.first;
    if (offset < 0 || frame > range_.last || offset % range_.step != 0) return std::nullopt;
    return static_cast<int>(offset / range_.step);
}

void FrameStrip::set_current(int frame) {
    current_ = index(frame).has_value() ? frame : range_.first;
    setAccessibleDescription(description(current_));
    update();
}

int FrameStrip::stepped(int steps) const {
    const std::int64_t to = static_cast<std::int64_t>(index(current_).value_or(0)) + steps;
    return range_.at(static_cast<int>(std::clamp<std::int64_t>(to, 0, range_.count() - 1)));
}

void FrameStrip::set_state(int frame, FrameState state, const QString& reason) {
    const std::optional<int> at = index(frame);
    if (!at) return;
    if (state == FrameState::kUnknown) {
        known_.erase(*at);
    } else {
        known_.insert_or_assign(*at, Known{state, state == FrameState::kFailed ? reason : QString()});
    }
    if (frame == current_) setAccessibleDescription(description(current_));
    update();
}

FrameState FrameStrip::state(int frame) const {
    const std::optional<int> at = index(frame);
    const auto found = at ? known_.find(*at) : known_.end();
    return found == known_.end() ? FrameState::kUnknown : found->second.state;
}

void FrameStrip::set_worst(std::optional<int> frame) {
    worst_ = frame;
    update();
}

int FrameStrip::frame_at(double x) const {
    const double share = std::clamp(x / std::max(width(), 1), 0.0, 1.0);
    return range_.at(std::min(static_cast<int>(share * range_.count()), range_.count() - 1));
}

QString FrameStrip::description(int frame) const {
    QString text = tr("Frame %1").arg(frame);
    switch (state(frame)) {
        case FrameState::kUnknown:
            break;
        case FrameState::kReading:
            text += tr(": being read");
            break;
        case FrameState::kPlate:
            text += tr(": plate in memory");
            break;
        case FrameState::kResult:
            text += tr(": result in memory");
            break;
        case FrameState::kFailed:
            text += tr(" failed: ") + known_.at(*index(frame)).reason;
            break;
    }
    if (worst_ == frame) text += tr(" (the worst frame)");
    return text;
}

void FrameStrip::ask(int frame) {
    if (frame == current_) return;
    set_current(frame);
    emit asked(frame);
}

bool FrameStrip::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    const auto* const help = static_cast<QHelpEvent*>(event);
    // Where a pixel holds several frames the one that failed is what one looks for.
    const int first = *index(frame_at(help->pos().x()));
    const int last = *index(frame_at(help->pos().x() + 1));
    int frame = range_.at(first);
    for (auto known = known_.lower_bound(first); known != known_.end() && known->first < last; ++known) {
        if (known->second.state != FrameState::kFailed) continue;
        frame = range_.at(known->first);
        break;
    }
    QToolTip::showText(help->globalPos(), description(frame), this);
    return true;
}

void FrameStrip::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) ask(frame_at(event->position().x()));
}

void FrameStrip::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() & Qt::LeftButton) ask(frame_at(event->position().x()));
}

void FrameStrip::wheelEvent(QWheelEvent* event) {
    event->accept();
    turned_ += event->angleDelta().y();
    const int steps = turned_ / kWheelStep;
    turned_ -= steps * kWheelStep;
    if (steps != 0) ask(stepped(-steps));
}

void FrameStrip::keyPressEvent(QKeyEvent* event) {
    constexpr std::pair<int, int> kSteps[]{{Qt::Key_Left, -1},           {Qt::Key_Right, 1},
                                           {Qt::Key_PageUp, -kFarStep},  {Qt::Key_PageDown, kFarStep},
                                           {Qt::Key_Home, -kMostFrames}, {Qt::Key_End, kMostFrames}};
    for (const auto& [key, steps] : kSteps) {
        if (event->key() == key) return ask(stepped(steps));
    }
    if (event->key() == Qt::Key_Space) {
        if (!event->isAutoRepeat()) emit play_asked();
        return;
    }
    QWidget::keyPressEvent(event);
}

}  // namespace veloxa::viewer
