// Marks areas of the picture with a brush along the pointer's path.
#pragma once

#include <optional>

#include "ZoImage/BrushStroke.h"
#include "area/Marks.h"
#include "area/PointerMode.h"

namespace veloxa::viewer {

inline constexpr int kLeastBrush = 1;
inline constexpr int kMostBrush = 999;

class BrushMode final : public PointerMode {
  public:
    using PointerMode::PointerMode;

    int size() const { return size_; }
    void set_size(int size);

    QString help() const override;
    void press(const PointerAt& at) override;
    void move(const PointerAt& at) override;
    void release(const PointerAt& at) override;
    void leave() override;
    void act(const PointerAt& at) override;
    bool key(const QKeyEvent& event) override;
    bool wheel(double notches, Qt::KeyboardModifiers modifiers) override;
    bool begun() const override { return drawing_; }
    bool cancel() override;
    void paint(QPainter& painter, const Geometry& geometry, double ratio) const override;

  private:
    Zo::Image::Box square(Point picture) const;
    void change_size(int steps);

    int size_ = 15;
    bool drawing_ = false;
    Zo::Image::BrushStroke stroke_;
    std::optional<Point> hover_;
};

}  // namespace veloxa::viewer
