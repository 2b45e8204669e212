// The sample list of one sampling action, kept in the script with the other knobs.
#pragma once

#include "ZoImage/Knob.h"
#include "panel/VeloxaSample.h"

class VeloxaSample_Knob final : public VeloxaSample, public Zo::Image::Knob {
  public:
    VeloxaSample_Knob(std::string_view name, Zo::Image::Op* owner);

    const char* class_name() const override { return "VeloxaSample_Knob"; }
    bool from_script(std::string_view text) override;
    void to_script(std::ostream& out, bool quote) const override;
    bool accepts_script(std::string_view text) const override;
    bool differs_from_default() const override { return count() > 0; }
    void restore_default() override { clear(); }

  protected:
    void begin_change() override { new_undo(); }
    void end_change() override { changed(); }
};
