// The frames of a shot as a strip: their numbers, what is known of each, the current one. A click or a drag
// asks for the frame under it, and so do the wheel and the arrow, page and end keys. Window thread.
//
// Holds what is known of a frame, not the frames, and paints a column of pixels at a time: as good for 5
// frames as for a million, of which a column then shows what its frames come to.
#pragma once

#include <QString>
#include <QWidget>
#include <map>
#include <optional>

#include "shot/frames/FramePattern.h"

namespace veloxa::viewer {

enum class FrameState { kUnknown, kReading, kPlate, kResult, kFailed };

class FrameStrip final : public QWidget {
    Q_OBJECT

  public:
    explicit FrameStrip(QWidget* parent = nullptr);

    const FrameRange& range() const { return range_; }
    void set_range(const FrameRange& range);  // forgets what is known of frames
    int current() const { return current_; }
    void set_current(int frame);

    // Frames that are not of the range are ignored; so is `reason` for any state but kFailed.
    void set_state(int frame, FrameState state, const QString& reason);
    FrameState state(int frame) const;
    void set_worst(std::optional<int> frame);

    // Of the frame, by the range's step; none where it is not of the range.
    std::optional<int> index(int frame) const;
    // The frame of the range that is so many further on than the current one, or the last one there.
    int stepped(int steps) const;
    // What lies there, in logical pixels from the left.
    int frame_at(double x) const;
    // What a tooltip says of a frame.
    QString description(int frame) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  signals:
    void asked(int frame);
    void play_asked();

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    struct Known {
        FrameState state;
        QString reason;
    };

    void ask(int frame);
    double left_of(int index) const;
    void paint_states(QPainter& painter) const;
    void paint_numbers(QPainter& painter) const;
    void paint_marks(QPainter& painter) const;

    FrameRange range_;
    int current_ = 0;
    std::optional<int> worst_;
    std::map<int, Known> known_;  // by index
    int turned_ = 0;              // of the wheel, since the last whole step
};

}  // namespace veloxa::viewer
