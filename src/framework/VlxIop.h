// Base of every internal operator: an image operator that reads the node's controls.
//
// The node wires an operator's inputs and then calls setup(), which hashes what the operator depends on
// and invalidates it when that changed. Kernels take their parameters from the controls once a span.
#pragma once

#include <initializer_list>

#include "ZoImage/Iop.h"
#include "controls/ControlBlock.h"
#include "controls/Controls.h"

class VlxIop : public Zo::Image::Iop {
  public:
    VlxIop(const Zo::Image::NodeContext& context, const ControlBlock* controls)
        : Iop(context), controls_(controls) {}

    virtual void setup() = 0;

    const char* help_text() const override { return "Veloxa Internal Operator."; }

  protected:
    const ControlBlock& controls() const { return *controls_; }

    // The three steps of a setup: values as their getters return them, hashes of connected inputs in
    // order, invalidation on change.
    void append(Zo::Image::Hash& hash, std::initializer_list<int> control_indices) const;
    void append(Zo::Image::Hash& hash, const ControlGroup& group) const;
    void append_input(Zo::Image::Hash& hash, int n) const;

    // Validation of an operator that writes some channels and otherwise looks like its input 0.
    void validate_writing(Zo::Image::ChannelSet written, Zo::Image::ChannelSet added);

  private:
    const ControlBlock* controls_;
};
