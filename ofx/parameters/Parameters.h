// The host's parameters, as the node's panel describes them: one list, made from the panel alone.
//
//   boolean, float, menu             Boolean, Double, Choice
//   color, color_alpha               RGB, RGBA
//   width_height                     Double2D
//   button, script and tool button   PushButton
//   custom (sample lists)            String, hidden, not animated
//   tab, toolbar                     Group, Page
//   link                             none of its own; its target stands on the page too
//
// A parameter has its knob's name; of several buttons of one name each has its tab's before it. Names and
// the order of menus are saved with projects and never change.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "ZoImage/KnobPanel.h"
#include "images/Coordinates.h"

namespace veloxa::ofx {

struct Parameter {
    Zo::Image::Knob* knob;
    std::string name;
    std::string label;
    const char* type;   // as the parameter suite names it
    std::size_t group;  // index into groups(); kNoGroup for none

    static constexpr std::size_t kNoGroup = static_cast<std::size_t>(-1);

    bool is_button() const;
    bool is_text() const;  // a String; any other that is no button holds numbers
    // What a number of the knob is multiplied by to suit images of this scale: knobs that count pixels follow
    // it, or a proxy would not look like the full frame. Every value of such a knob counts pixels of the
    // image, wide for the first, high for the second; the image's pixel aspect does not matter to it.
    double scale(const RenderScale& scale, int i) const;
};

class ParameterList {
  public:
    struct Group {
        std::string name;
        std::string page;
        std::string label;
        std::vector<std::string> members;  // names of parameters in panel order, those of links among them
        bool toolbar = false;
    };

    // The list refers to the panel's knobs. Lists of panels of one class are alike.
    explicit ParameterList(const Zo::Image::KnobPanel& panel);

    const std::vector<Parameter>& parameters() const { return parameters_; }
    const std::vector<Group>& groups() const { return groups_; }
    // The tools of the toolbar, in panel order.
    std::vector<std::size_t> tools() const;

  private:
    std::vector<Parameter> parameters_;
    std::vector<Group> groups_;
};

// Knobs that the plug-in knows by name.
inline constexpr std::string_view kScreenColor = "screen_color";
inline constexpr std::string_view kOutputMode = "output_mode";
inline constexpr int kComposite = 0;  // items of kOutputMode
inline constexpr int kUnpremultiplied = 2;

// What a parameter holds; numbers for all but texts, as shown() has them.
struct Value {
    std::array<double, 4> numbers{};
    std::string text;

    friend bool operator==(const Value&, const Value&) = default;
};
// Of colours: none is chosen.
bool is_black(const Value& colour);
using Values = std::vector<Value>;  // in the order of the list, buttons too

// The knob's values now, and those by which it becomes them at this scale of images. Numbers that the knob
// cannot hold (NaN, infinite, no item of the menu) become its default, too large ones the largest.
Value knob_value(const Parameter& parameter, const RenderScale& scale);
// True when that changed the knob. Tells nobody.
bool set_knob(const Parameter& parameter, const Value& value, const RenderScale& scale);

}  // namespace veloxa::ofx
