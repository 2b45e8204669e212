// Draws and edits the shot's drawn mattes.
//
// A click sets a point of a new one; a click on its first point, Enter or a double click closes it. A point
// that is there is dragged by itself, a line with its whole polygon. By the crosshair: Space takes hold of
// what is under it and lets it go again.
#pragma once

#include <optional>
#include <string>

#include "area/PointerMode.h"
#include "shot/mattes/DrawnMatte.h"

namespace veloxa::viewer {

class PolygonMode final : public PointerMode {
  public:
    using PointerMode::PointerMode;

    const DrawnMattes& mattes() const { return mattes_; }
    std::optional<std::size_t> chosen() const {
        return choice_ ? std::optional(choice_->matte) : std::nullopt;
    }
    // Gives up a drag; the choice stays where there is still such a polygon or point.
    void set_mattes(DrawnMattes mattes);
    // What new ones are; its points do not count.
    void set_kind(const DrawnMatte& like) { like_ = like; }

    QString help() const override;
    void press(const PointerAt& at) override;
    void move(const PointerAt& at) override;
    void release(const PointerAt& at) override;
    void double_click(const PointerAt& at) override;
    void leave() override;
    void act(const PointerAt& at) override;
    bool key(const QKeyEvent& event) override;
    bool begun() const override { return drag_ || !draft_.points.empty(); }
    bool cancel() override;
    void paint(QPainter& painter, const Geometry& geometry, double ratio) const override;

  private:
    struct Choice {
        std::size_t matte;
        std::optional<std::size_t> point;  // none for the whole polygon
    };
    struct Drag {
        Point from;
        DrawnMatte before;
        bool moved = false;
    };

    bool near(Point area, Point picture) const;
    std::optional<Choice> under(Point area) const;
    void close();
    bool remove();
    void tell(const QString& what, bool dragging);

    DrawnMattes mattes_;
    DrawnMatte like_;
    DrawnMatte draft_;  // without points while none is drawn
    std::optional<Choice> choice_;
    std::optional<Drag> drag_;
    std::optional<Point> hover_;  // in the picture
};

}  // namespace veloxa::viewer
