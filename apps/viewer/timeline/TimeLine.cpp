#include "timeline/TimeLine.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "panel/ToolIcons.h"

namespace veloxa::viewer {

TimeLine::TimeLine(QWidget* parent) : QWidget(parent), strip_(new FrameStrip(this)) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(4, 2, 4, 2);
    column->setSpacing(2);
    column->addWidget(strip_);
    column->addLayout(new QHBoxLayout);
    connect(add_button("back", tr("Step back"), tr("One frame back")), &QToolButton::clicked, this,
            [this] { step(-1); });
    play_ = add_button("play", tr("Play"), tr("Play or pause (Space on the time line)"));
    play_->setCheckable(true);
    connect(play_, &QToolButton::clicked, this, &TimeLine::set_playing);
    connect(add_button("forward", tr("Step forward"), tr("One frame on")), &QToolButton::clicked, this,
            [this] { step(1); });
    loop_ = add_button("loop", tr("Loop"), tr("Begin again after the last frame"));
    loop_->setCheckable(true);
    loop_->setChecked(true);
    add_fields();
    connect(strip_, &FrameStrip::asked, this, [this](int frame) {
        set_playing(false);
        want(frame);
    });
    connect(strip_, &FrameStrip::play_asked, this, [this] { set_playing(!playing_); });
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, [this] {
        due_ = true;
        if (!waiting_) advance();
    });
    set_range({});
}

QToolButton* TimeLine::add_button(const char* icon, const QString& name, const QString& tooltip) {
    auto* const button = new QToolButton(this);
    button->setIcon(tool_icon(QString::fromLatin1(icon)));
    button->setAccessibleName(name);
    button->setToolTip(tooltip);
    button->setFocusPolicy(Qt::StrongFocus);
    layout()->itemAt(1)->layout()->addWidget(button);
    return button;
}

void TimeLine::add_fields() {
    auto* const row = static_cast<QHBoxLayout*>(layout()->itemAt(1)->layout());
    frame_ = new QSpinBox(this);
    frame_->setKeyboardTracking(false);
    frame_->setAccessibleName(tr("Frame"));
    frame_->setToolTip(tr("Number of the frame that is shown"));
    row->addWidget(frame_);
    row->addStretch(1);
    rate_ = new QDoubleSpinBox(this);
    rate_->setKeyboardTracking(false);
    rate_->setRange(0.1, 1000.0);
    rate_->setDecimals(3);
    rate_->setValue(24.0);
    rate_->setSuffix(tr(" fps"));
    rate_->setAccessibleName(tr("Frames per second"));
    rate_->setToolTip(tr("How fast to play; slower where frames are not ready in time"));
    row->addWidget(rate_);
    connect(frame_, &QSpinBox::valueChanged, this, [this](int frame) {
        set_playing(false);
        go_to(frame);
    });
    connect(rate_, &QDoubleSpinBox::valueChanged, this, &TimeLine::frames_per_second_changed);
}

void TimeLine::set_range(const FrameRange& range) {
    set_playing(false);
    strip_->set_range(range);
    waiting_ = false;
    const QSignalBlocker quiet(frame_);
    frame_->setRange(this->range().first, this->range().last);
    frame_->setSingleStep(this->range().step);
    frame_->setValue(current());
}

void TimeLine::go_to(int frame) {
    const FrameRange& all = range();
    const double steps = (static_cast<double>(frame) - all.first) / all.step;
    want(all.at(static_cast<int>(std::lround(std::clamp(steps, 0.0, all.count() - 1.0)))));
}

void TimeLine::step(int steps) {
    set_playing(false);
    if (strip_->stepped(steps) != current()) want(strip_->stepped(steps));
}

// What the owner does may come back to here, so this is done before it is told.
void TimeLine::want(int frame) {
    waiting_ = true;
    strip_->set_current(frame);
    {
        const QSignalBlocker quiet(frame_);
        frame_->setValue(frame);
    }
    emit frameWanted(frame);
}

void TimeLine::set_shown(int frame) {
    if (frame != current()) return;
    waiting_ = false;
    if (playing_ && due_) advance();
}

void TimeLine::set_state(int frame, FrameState state, const QString& reason) {
    strip_->set_state(frame, state, reason);
    if (state == FrameState::kFailed && waiting_) set_shown(frame);
}

void TimeLine::set_playing(bool playing) {
    const bool changes = playing != playing_;
    playing_ = playing;
    play_->setChecked(playing);
    if (!changes) return;
    play_->setIcon(tool_icon(playing ? QStringLiteral("pause") : QStringLiteral("play")));
    timer_.stop();
    emit playing_changed(playing);
    if (!playing_) return;
    clock_.start();
    due_at_ = 0.0;
    if (waiting_) {
        due_ = true;
    } else if (strip_->stepped(1) == current() && range().count() > 1) {
        play_frame(range().first);
    } else {
        advance();
    }
}

void TimeLine::advance() {
    const int next = strip_->stepped(1);
    if (next != current()) return play_frame(next);
    if (!looping() || range().count() == 1) return set_playing(false);
    play_frame(range().first);
}

// What a frame is late is not made up for, but for what the timer's whole milliseconds lose.
void TimeLine::play_frame(int frame) {
    due_ = false;
    const double now = static_cast<double>(clock_.nsecsElapsed()) / 1e6;
    due_at_ = std::max(due_at_ + 1000.0 / frames_per_second(), now);
    timer_.start(static_cast<int>(std::ceil(due_at_ - now)));
    want(frame);
}

bool TimeLine::looping() const {
    return loop_->isChecked();
}

void TimeLine::set_looping(bool looping) {
    loop_->setChecked(looping);
}

double TimeLine::frames_per_second() const {
    return rate_->value();
}

void TimeLine::set_frames_per_second(double rate) {
    rate_->setValue(rate);
}

}  // namespace veloxa::viewer
