// Base of every internal operator: an image operator that reads the node's controls, and is described by
// data.
//
// The node wires an operator's inputs and then calls setup(), which hashes what the operator depends on
// and invalidates it when that changed. Kernels take their parameters from the controls once a span.
// Validation and setup are the node's, on one thread; engine runs on many and keeps everything in locals.
#pragma once

#include <initializer_list>
#include <vector>

#include "ZoImage/Iop.h"
#include "controls/ControlBlock.h"
#include "controls/Controls.h"

class VlxIop : public Zo::Image::Iop {
  public:
    // The engine's words that operators are described in.
    using Channel = Zo::Image::Channel;
    using ChannelSet = Zo::Image::ChannelSet;
    using NodeContext = Zo::Image::NodeContext;
    using Row = Zo::Image::Row;
    using enum Zo::Image::Channel;
    static constexpr ChannelSet kMaskNone = Zo::Image::kMaskNone;
    static constexpr ChannelSet kMaskAlpha = Zo::Image::kMaskAlpha;
    static constexpr ChannelSet kMaskRgb = Zo::Image::kMaskRgb;
    static constexpr ChannelSet kMaskRgba = Zo::Image::kMaskRgba;

    // Indices of controls, given one by one or as groups.
    class ControlList {
      public:
        struct Item {
            Item(int index) : indices{index, -1, -1} {}  // NOLINT: lists name controls and groups alike
            Item(const ControlGroup& g) : indices{g.first, g.second, g.third} {}  // NOLINT: as above
            int indices[3];
        };
        ControlList(std::initializer_list<Item> items);
        auto begin() const { return indices_.begin(); }
        auto end() const { return indices_.end(); }

      private:
        std::vector<int> indices_;
    };

    static constexpr int kAlways = -1;

    struct Input {
        ChannelSet channels;          // that engine needs of it
        const char* label = nullptr;  // as hosts show it, where it has one
        int control = kAlways;        // else it is read while this control is not 0
    };

    struct Description {
        const char* class_name;
        std::vector<Input> inputs;
        ControlList hashed;         // what the pixels depend on
        ControlList unhashed = {};  // and what they depend on too; the node tells when one of these changed
    };

    VlxIop(const NodeContext& context, const ControlBlock* controls, Description description);

    // Invalidates the operator when a hashed control or an input that is read is another than before.
    virtual void setup() { invalidate(state()); }

    const char* class_name() const override { return description_.class_name; }
    const char* help_text() const override { return "Veloxa Internal Operator."; }
    const char* input_label(int input, char* buffer) const override;

    const ControlList& unhashed() const { return description_.unhashed; }

  protected:
    const ControlBlock& controls() const { return *controls_; }

    // The hashed controls as their getters return them, then the inputs that are read and connected.
    Zo::Image::Hash state() const;

    const std::vector<Input>& described_inputs() const { return description_.inputs; }
    bool reads(const Input& input) const {
        return input.control == kAlways || controls_->get(input.control) != 0;
    }
    bool reads(int n) const { return reads(description_.inputs[static_cast<std::size_t>(n)]); }

    // Validation of an operator that writes some channels and otherwise looks like its input 0.
    void validate_writing(ChannelSet written, ChannelSet added);

  private:
    const ControlBlock* controls_;
    Description description_;
};
