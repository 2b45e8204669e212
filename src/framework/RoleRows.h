// The colour of an engine's rows in role order, as kernels take it.
#pragma once

#include "ZoImage/Row.h"
#include "controls/ChannelRoles.h"
#include "controls/Controls.h"

// The roles' channels for the screen colour that the controls hold.
class RoleRows {
  public:
    explicit RoleRows(const ControlBlock& controls) : color_index_(controls.get(controls::kColorIndex)) {}

    RolePixels read(const Zo::Image::Row& row) const {
        return {row[channel(0)], row[channel(1)], row[channel(2)]};
    }
    RoleOutput overwrite(Zo::Image::Row& row) const {
        return {row.overwrite(channel(0)), row.overwrite(channel(1)), row.overwrite(channel(2))};
    }

  private:
    Zo::Image::Channel channel(int role) const {
        return static_cast<Zo::Image::Channel>(Zo::Image::kRed + ChannelForRole(color_index_, role));
    }

    std::int32_t color_index_;
};
