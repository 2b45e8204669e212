// Edits of a real node's knobs that keep a record of what was asked.
#pragma once

#include <QStringList>
#include <optional>

#include "session/PanelEdits.h"
#include "shot/node/Node.h"

namespace test {

class NodeEdits final : public veloxa::viewer::PanelEdits {
  public:
    Zo::Image::KnobPanel& panel() override { return node->panel(); }
    void begin_edit(const std::string& name) override { log << "begin " + QString::fromStdString(name); }
    void end_edit() override { log << "end"; }
    void set(Zo::Image::Knob& knob, double value, int i) override {
        log << "set";
        if (knob.set_value(value, i)) knob.changed();
    }
    void reset(Zo::Image::Knob& knob) override {
        log << "reset";
        knob.restore_default();
        knob.changed();
    }
    // Those that look at a picture have none here.
    void press(Zo::Image::Knob& button) override {
        log << "press " + QString::fromStdString(button.name());
        if (!button.flag(Zo::Image::kKnobLooks)) node->panel().press(button);
    }
    void use_tool(Zo::Image::Knob* tool) override { tool_ = tool; }
    Zo::Image::Knob* tool() const override { return tool_; }
    void pick_colour(Zo::Image::Knob* knob) override { picking_ = knob; }
    Zo::Image::Knob* picking() const override { return picking_; }

    Zo::Image::Knob& knob(const char* name) { return node->panel().get(name); }

    std::optional<veloxa::Node> node{std::in_place};
    QStringList log;

  private:
    Zo::Image::Knob* tool_ = nullptr;
    Zo::Image::Knob* picking_ = nullptr;
};

}  // namespace test
