#include "panel/KnobSlider.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

namespace veloxa::viewer {

namespace {

constexpr int kTicksPerStep = 10;

// Decimal, so that numbers stay short, and fine enough that every pixel of a wide slider counts.
double ticks_per_unit(Zo::Image::KnobRange range) {
    return std::pow(10.0, std::ceil(std::log10(500.0 / (range.high - range.low))));
}

bool turns(int key) {
    constexpr Qt::Key kKeys[]{Qt::Key_Left, Qt::Key_Right,  Qt::Key_Up,       Qt::Key_Down,
                              Qt::Key_Home, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_End};
    return std::ranges::find(kKeys, key) != std::end(kKeys);
}

}  // namespace

KnobSlider::KnobSlider(Zo::Image::KnobRange range, QWidget* parent)
    : QSlider(Qt::Horizontal, parent), range_(range) {
    if (!(range_.low < range_.high)) range_.high = range_.low + 1.0;
    ticks_per_unit_ = ticks_per_unit(range_);
    setRange(0, static_cast<int>(std::lround((range_.high - range_.low) * ticks_per_unit_)));
    setSingleStep(kTicksPerStep);
    setPageStep(10 * kTicksPerStep);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumWidth(60);
    connect(this, &QSlider::valueChanged, this,
            [this](int tick) { emit moved(range_.low + tick / ticks_per_unit_); });
}

double KnobSlider::step() const {
    return kTicksPerStep / ticks_per_unit_;
}

void KnobSlider::set_value(double value) {
    if (isSliderDown()) return;
    const double tick = (std::clamp(value, range_.low, range_.high) - range_.low) * ticks_per_unit_;
    const QSignalBlocker quiet(this);
    setValue(static_cast<int>(std::lround(tick)));
}

void KnobSlider::begin() {
    if (!std::exchange(editing_, true)) emit begun();
}

void KnobSlider::end() {
    if (std::exchange(editing_, false)) emit ended();
}

void KnobSlider::let_go() {
    setSliderDown(false);
    end();
}

int KnobSlider::tick_at(const QPointF& place) const {
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect groove = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, this);
    const QRect handle = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    return QStyle::sliderValueFromPosition(minimum(), maximum(),
                                           static_cast<int>(place.x()) - grip_ - groove.left(),
                                           groove.width() - handle.width(), option.upsideDown);
}

void KnobSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect handle = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    const bool gripped = handle.contains(event->position().toPoint());
    grip_ = gripped ? static_cast<int>(event->position().x()) - handle.left() : handle.width() / 2;
    event->accept();
    begin();
    setSliderDown(true);
    if (!gripped) setSliderPosition(tick_at(event->position()));
}

void KnobSlider::mouseMoveEvent(QMouseEvent* event) {
    if (!isSliderDown()) return event->ignore();
    event->accept();
    setSliderPosition(tick_at(event->position()));
}

void KnobSlider::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    event->accept();
    let_go();
}

void KnobSlider::keyPressEvent(QKeyEvent* event) {
    if (turns(event->key())) begin();
    QSlider::keyPressEvent(event);
}

void KnobSlider::keyReleaseEvent(QKeyEvent* event) {
    QSlider::keyReleaseEvent(event);
    if (!event->isAutoRepeat() && !isSliderDown()) end();
}

void KnobSlider::focusOutEvent(QFocusEvent* event) {
    if (!isSliderDown()) end();
    QSlider::focusOutEvent(event);
}

// No release comes after these two.
void KnobSlider::hideEvent(QHideEvent* event) {
    let_go();
    QSlider::hideEvent(event);
}

void KnobSlider::changeEvent(QEvent* event) {
    if (event->type() == QEvent::EnabledChange && !isEnabled()) let_go();
    QSlider::changeEvent(event);
}

void KnobSlider::wheelEvent(QWheelEvent* event) {
    if (!hasFocus()) return event->ignore();
    event->accept();
    const int delta = event->angleDelta().y();
    if (delta != 0) triggerAction(delta > 0 ? SliderSingleStepAdd : SliderSingleStepSub);
}

}  // namespace veloxa::viewer
