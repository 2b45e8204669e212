// One click tells a pixel.
#pragma once

#include "area/PointerMode.h"

namespace veloxa::viewer {

class PickMode final : public PointerMode {
  public:
    using PointerMode::PointerMode;

    QString help() const override;
    void press(const PointerAt& at) override;
    void act(const PointerAt& at) override { press(at); }
};

}  // namespace veloxa::viewer
