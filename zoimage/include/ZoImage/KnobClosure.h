// What an operator's knobs() describes its panel to.
//
// The same description serves two passes. In the making pass each call below makes a knob; in any other
// pass it finds the one made before. Either way it returns the knob, null when there is none. The order of
// calls is the order in the panel. Tooltip and the Set functions speak of the knob of the call before them
// and act in the making pass only.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string_view>
#include <utility>

#include "ZoImage/Knob.h"

namespace Zo::Image {

class Op;

class Knob_Closure {
  public:
    virtual ~Knob_Closure() = default;

    virtual bool making() const = 0;
    virtual Op& op() const = 0;  // whose panel this is

    // Making pass: takes the knob into the panel.
    virtual Knob* add(std::unique_ptr<Knob> knob) = 0;
    // Other passes: the next knob of this kind and name in panel order, since names need not be unique.
    virtual Knob* find(Knob::Kind kind, std::string_view name) = 0;
    // The knob of the last add or find.
    virtual Knob* last() const = 0;
};

// A knob for what the field holds: true or false, one float, the three or four of a colour, width and height,
// or the index of one of the items.
Knob* value_knob(Knob_Closure& f, Knob::Field field, std::string_view name, std::string_view label,
                 std::vector<std::string> items = {});
Knob* link_knob(Knob_Closure& f, Knob* target, std::string_view name, std::string_view label);
// Tabs, whose name is their label, texts, and a toolbar's ends and separators.
Knob* plain_knob(Knob_Closure& f, Knob::Kind kind, std::string_view name = {}, std::string_view label = {});
// With items, `field` holds the index of the one by which the button goes.
Knob* button(Knob_Closure& f, std::string_view name, std::string_view label, std::int32_t* field = nullptr,
             std::initializer_list<std::string_view> items = {});
// `command` is "knob NAME VALUE", where $value stands for the button's own value, 0 or 1.
Knob* script_button(Knob_Closure& f, std::string_view command, std::string_view name, std::string_view label);

// `field` is the toolbar's: it holds `number` while this tool is the active one.
Knob* tool_button(Knob_Closure& f, std::int32_t* field, std::int32_t number, std::string_view name,
                  std::string_view label);

void Tooltip(Knob_Closure& f, std::string_view text);
void SetRange(Knob_Closure& f, double low, double high);
void SetDefault(Knob_Closure& f, std::span<const double> values);

// A knob of the subclass T, made as T(name, args...).
template <class T, class... Args>
T* custom_knob(Knob_Closure& f, std::string_view name, Args&&... args) {
    if (!f.making()) return dynamic_cast<T*>(f.find(Knob::Kind::kCustom, name));
    auto knob = std::make_unique<T>(name, std::forward<Args>(args)...);
    T* const made = knob.get();
    f.add(std::move(knob));
    return made;
}

}  // namespace Zo::Image
