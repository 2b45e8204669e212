// The left button moves the picture, as the middle one does in every mode.
#pragma once

#include "area/PointerMode.h"

namespace veloxa::viewer {

class NavigateMode final : public PointerMode {
  public:
    using PointerMode::PointerMode;

    QString help() const override;
    Qt::CursorShape cursor() const override { return Qt::OpenHandCursor; }
    bool aims() const override { return false; }
};

}  // namespace veloxa::viewer
