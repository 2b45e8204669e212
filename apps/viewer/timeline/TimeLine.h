// The frames of a shot and what plays them. Window thread.
//
// Says which frame is wanted; the owner fetches it and says set_shown() once it is on the screen. While it
// plays, the next frame is wanted only when the one before is shown and its time is over: none is skipped,
// and none piles up behind a slow one. A frame that is told to have failed counts as shown.
#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QTimer>
#include <QWidget>
#include <optional>

#include "shot/frames/FramePattern.h"
#include "timeline/FrameStrip.h"

class QDoubleSpinBox;
class QSpinBox;
class QToolButton;

namespace veloxa::viewer {

class TimeLine final : public QWidget {
    Q_OBJECT

  public:
    explicit TimeLine(QWidget* parent = nullptr);

    // Another shot: stops, forgets what is known of frames, goes to the first. Asks for nothing.
    void set_range(const FrameRange& range);
    const FrameRange& range() const { return strip_->range(); }

    int current() const { return strip_->current(); }
    // Goes there and asks for it; the nearest frame of the range where it has no such frame.
    void go_to(int frame);
    void set_shown(int frame);

    void set_state(int frame, FrameState state, const QString& reason = {});
    void set_worst(std::optional<int> frame) { strip_->set_worst(frame); }

    bool playing() const { return playing_; }
    void set_playing(bool playing);
    bool looping() const;
    void set_looping(bool looping);
    double frames_per_second() const;
    void set_frames_per_second(double rate);  // limited to 0.1 to 1000

  signals:
    void frameWanted(int frame);
    void playing_changed(bool playing);
    void frames_per_second_changed(double rate);

  private:
    QToolButton* add_button(const char* icon, const QString& name, const QString& tooltip);
    void add_fields();
    void step(int steps);
    void want(int frame);
    void advance();
    void play_frame(int frame);

    FrameStrip* strip_;
    QToolButton* play_;
    QToolButton* loop_;
    QSpinBox* frame_;
    QDoubleSpinBox* rate_;
    QTimer timer_;
    QElapsedTimer clock_;  // since it began to play
    double due_at_ = 0.0;  // when the next frame's turn is, in milliseconds
    bool playing_ = false;
    bool waiting_ = false;  // for the current frame to be shown
    bool due_ = false;      // its time is over
};

}  // namespace veloxa::viewer
