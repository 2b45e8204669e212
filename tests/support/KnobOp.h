// An operator with one knob of each kind that holds a value, which notes what it is told.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "ZoImage/KnobClosure.h"
#include "ZoImage/KnobPanel.h"

namespace test {

class ListKnob final : public Zo::Image::Knob {
  public:
    explicit ListKnob(std::string_view name) : Knob(Kind::kCustom, name, name) {}
    bool from_script(std::string_view text) override {
        Script_List(text, words);
        changed();
        return true;
    }
    void to_script(std::ostream& out, bool) const override {
        out << '{';
        for (const std::string& word : words) out << word << ' ';
        out << '}';
    }
    bool accepts_script(std::string_view text) const override {
        return text.find("bad") == std::string_view::npos;
    }
    bool differs_from_default() const override { return !words.empty(); }

    std::vector<std::string> words;
};

class KnobOp final : public Zo::Image::Op {
  public:
    KnobOp() : Op(Zo::Image::NodeContext{}) {}

    const char* class_name() const override { return "KnobOp"; }
    void knobs(Zo::Image::Knob_Closure& f) override {
        using namespace Zo::Image;
        found.clear();
        found.push_back(value_knob(f, &on, "on", "On"));
        Tooltip(f, "Whether it is on.");
        found.push_back(value_knob(f, &mode, "mode", "Mode", {"off", "soft light", "hard"}));
        found.push_back(script_button(f, "knob on $value", "invert", "invert"));
        found.push_back(plain_knob(f, Knob::Kind::kTab, "More", "More"));
        found.push_back(link_knob(f, found[0], "more_on", "enable"));
        found.push_back(value_knob(f, std::span(&gain, 1), "gain", "Gain"));
        SetRange(f, 0.0, 10.0);
        found.push_back(button(f, "reset", "reset"));
        found.push_back(value_knob(f, std::span(tint), "tint", "Tint"));
        found.push_back(value_knob(f, std::span(fill), "fill", "Fill"));
        found.push_back(button(f, "reset", "reset"));
        found.push_back(plain_knob(f, Knob::Kind::kBeginToolbar, "bar"));
        found.push_back(tool_button(f, &tool, 0, "pick", "Pick"));
        found.push_back(tool_button(f, &tool, 1, "wipe", "Wipe"));
        found.push_back(plain_knob(f, Knob::Kind::kEndToolbar));
        found.push_back(value_knob(f, std::span(size), "size", "Size"));
        found.push_back(custom_knob<ListKnob>(f, "list"));
    }
    int knob_changed(Zo::Image::Knob* knob) override {
        told.push_back(knob->name());
        if (knob->name() == "gain") knob->changed();  // an operator that answers itself
        return 1;
    }

    bool on = false;
    std::int32_t mode = 0;
    float gain = 1.0f;
    std::array<float, 3> tint{0.5f, 0.5f, 0.5f};
    std::array<float, 4> fill{0.0f, 0.0f, 0.0f, 1.0f};
    std::array<double, 2> size{2.0, 2.0};
    std::int32_t tool = 0;
    std::vector<Zo::Image::Knob*> found;
    std::vector<std::string> told;

  protected:
    void _validate(bool) override {}
};

}  // namespace test
