// Dragging spans a box of pixels, both ends included, which stays until the next one.
#pragma once

#include <optional>

#include "area/Marks.h"
#include "area/PointerMode.h"

namespace veloxa::viewer {

class BoxMode final : public PointerMode {
  public:
    using PointerMode::PointerMode;

    // Empty for none.
    const Zo::Image::Box& box() const { return box_; }
    void set_box(const Zo::Image::Box& box) { box_ = box; }

    QString help() const override;
    void press(const PointerAt& at) override;
    void move(const PointerAt& at) override;
    void release(const PointerAt& at) override;
    void act(const PointerAt& at) override;
    bool begun() const override { return from_.has_value(); }
    bool cancel() override;
    void paint(QPainter& painter, const Geometry& geometry, double ratio) const override;

  private:
    void span(const PointerAt& at);

    std::optional<PixelAt> from_;  // while it is dragged
    Zo::Image::Box box_, before_;
};

}  // namespace veloxa::viewer
