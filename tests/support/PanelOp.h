// The keyer's panel on an operator that computes nothing.
#pragma once

#include "ZoImage/KnobPanel.h"
#include "panel/Panel.h"

namespace test {

class PanelOp final : public Zo::Image::Op {
  public:
    PanelOp() : Op(Zo::Image::NodeContext{}) {}

    const char* class_name() const override { return "Veloxa"; }
    void knobs(Zo::Image::Knob_Closure& f) override { build_panel(f, storage, refs); }
    int knob_changed(Zo::Image::Knob* knob) override { return refs.knob_changed(knob); }

    KnobStorage storage;
    PanelKnobs refs;

  protected:
    void _validate(bool) override {}
};

}  // namespace test
