// Shows what others shaded, and turns pointer, wheel, touchpad and keys into calls.
//
// It renders nothing: whoever owns it shades for picture_geometry() whenever geometryChanged() says so and
// hands that over. Until then the last picture is drawn where it belongs, enlarged or reduced. Coordinates
// are those of picture/Geometry.h: device pixels of a pane, pixels of the picture with y upward. Window
// thread.
//
// Keys: F fits, 1 is pixel for pixel, + and - zoom, arrows move the picture, or a crosshair while a tool is
// in hand (Shift: further), Space or Enter uses the tool there, Escape gives up what is begun. Alt with left
// and right moves the wipe's line. Space held and a drag, or the middle button, moves the picture.
#pragma once

#include <QWidget>
#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "area/Panes.h"
#include "picture/Geometry.h"
#include "picture/Shading.h"
#include "shot/mattes/DrawnMatte.h"

class QGestureEvent;
class QLabel;

namespace veloxa::viewer {

class BoxMode;
class BrushMode;
class PointerMode;
class PolygonMode;
struct PointerAt;

enum class PointerTool { kNavigate, kBrush, kBox, kPick, kPolygon };

class PictureArea final : public QWidget {
    Q_OBJECT

  public:
    explicit PictureArea(QWidget* parent = nullptr);
    ~PictureArea() override;

    // The picture's frame; the first one is fitted, as is another one until the view was moved by hand.
    void set_format(const Zo::Image::Format& format);
    const Zo::Image::Format& format() const { return format_; }

    // What each pane is to be shaded for.
    const Geometry& picture_geometry() const { return geometry_; }
    // Its zoom and centre; the size stays the area's.
    void set_picture_geometry(const Geometry& geometry);
    double ratio() const { return devicePixelRatioF(); }
    void fit();
    void show_one_to_one();
    void zoom_by(double factor);  // around the middle

    void set_shaded(Pane pane, Shaded shaded, const Geometry& geometry);
    void clear(Pane pane);
    void set_panes(Panes panes);
    Panes panes() const { return panes_; }
    void set_wipe(double wipe);  // of the width, 0 to 1
    double wipe() const { return wipe_; }
    void set_caption(Pane pane, const QString& caption);
    // What went wrong, as "FILE: why", until there is something to show again; empty for nothing.
    void set_message(const QString& message);
    QString message() const;

    // Gives up what the one before has begun.
    void set_tool(PointerTool tool);
    PointerTool tool() const { return tool_; }
    void set_brush_size(int pixels);  // 1 to 999
    int brush_size() const;
    void set_box(const Zo::Image::Box& box);  // that the box tool shows; empty for none
    void set_mattes(DrawnMattes mattes);
    const DrawnMattes& mattes() const;
    // The number of the matte that was clicked on or drawn last; none where there is no such.
    std::optional<std::size_t> chosen_matte() const;
    Pane pane_under_pointer() const;
    // Kind, side and feather of mattes that are drawn from now on.
    void set_new_matte(const DrawnMatte& like);

  signals:
    void geometryChanged();
    void wipeMoved(double wipe);
    void hovered(QPointF picture);
    void left();
    void filesDropped(const QStringList& paths);
    // Of a stroke, all its areas so far. An ended one has some; one is either ended or cancelled.
    void strokeBegun(const std::vector<Zo::Image::Box>& areas);
    void strokeMoved(const std::vector<Zo::Image::Box>& areas);
    void strokeEnded(const std::vector<Zo::Image::Box>& areas);
    void strokeCancelled();
    void brushSizeChanged(int pixels);
    void boxDragged(const Zo::Image::Box& box);  // each time it changes; empty for none
    void picked(int x, int y);
    // While it is dragged, and once at the end; a drag that is given up ends with the mattes as they were.
    void mattesChanged(const DrawnMattes& mattes, const QString& what, bool dragging);

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    struct Picture {
        Shaded shaded;
        Geometry geometry;
        QString caption;
    };
    enum class Held { kNothing, kPicture, kWipe, kMode };

    QSize device_size() const;
    PaneRoom room() const { return {panes_, device_size(), wipe_}; }
    Picture& picture(Pane pane) { return pictures_[static_cast<std::size_t>(pane)]; }
    void fill_room();
    void move_to(const Geometry& geometry, bool fitted);
    void place_message();
    void describe();

    // The event's place in device pixels of the area; of the pane under it, or the one held.
    QPointF device(QPointF position) const { return position * ratio(); }
    PointerAt at(QPointF device) const;
    void zoom_at(double factor, QPointF device);
    bool on_line(QPointF device) const;
    bool native_gesture(QEvent* event);
    bool gesture(QGestureEvent* event);
    bool arrow(const QKeyEvent& event);
    bool view_key(const QKeyEvent& event);
    void aim(double right, double up);
    PointerAt aimed() const;
    bool act();
    void show_cursor();

    void paint_pane(QPainter& painter, Pane pane);
    void paint_line(QPainter& painter) const;

    PointerMode& mode() const { return *modes_[static_cast<std::size_t>(tool_)]; }

    Zo::Image::Format format_;
    Geometry geometry_;
    bool fitted_ = true;
    std::array<Picture, 2> pictures_;
    Panes panes_ = Panes::kOne;
    double wipe_ = 0.5;
    QLabel* message_;

    std::array<std::unique_ptr<PointerMode>, 5> modes_;
    PointerTool tool_ = PointerTool::kNavigate;
    BrushMode* brush_;
    BoxMode* box_;
    PolygonMode* polygon_;

    Held held_ = Held::kNothing;
    Qt::MouseButton held_by_ = Qt::NoButton;
    Pane held_pane_ = Pane::kFirst;
    QPointF held_at_;  // device pixels
    bool space_ = false;
    bool space_used_ = false;         // for a drag
    std::optional<Point> crosshair_;  // the middle of a pixel of the picture
};

}  // namespace veloxa::viewer
