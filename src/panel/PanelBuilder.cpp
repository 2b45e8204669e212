#include "panel/PanelBuilder.h"

#include <array>

using namespace Zo::Image;

namespace {

template <class T, std::size_t N>
void set_defaults(Knob_Closure& closure, const std::array<T, N>& values) {
    std::array<double, N> wide;
    for (std::size_t i = 0; i < N; ++i) wide[i] = static_cast<double>(values[i]);
    SetDefault(closure, wide);
}

template <class T>
void set_defaults(Knob_Closure& closure, T value) {
    set_defaults(closure, std::array<T, 1>{value});
}

}  // namespace

PanelBuilder::PanelBuilder(Knob_Closure& closure, KnobStorage& storage, PanelKnobs& refs)
    : closure_(closure), storage_(storage), refs_(refs) {
    refs_ = PanelKnobs{};
}

Knob* PanelBuilder::boolean(bool KnobStorage::*field, Text name, Text label, Text tooltip) {
    Knob* const knob = bool_knob(closure_, &(storage_.*field), name, label);
    set_defaults(closure_, defaults_.*field);
    Tooltip(closure_, tooltip);
    return setting(knob, KnobFields::place(field));
}

Knob* PanelBuilder::number(float KnobStorage::*field, Text name, Text label, double low, double high,
                           Text tooltip) {
    Knob* const knob = float_knob(closure_, &(storage_.*field), name, label);
    set_defaults(closure_, defaults_.*field);
    SetRange(closure_, low, high);
    Tooltip(closure_, tooltip);
    return setting(knob, KnobFields::place(field));
}

Knob* PanelBuilder::menu(std::int32_t KnobStorage::*field, std::initializer_list<Text> items, Text name,
                         Text label, Text tooltip) {
    Knob* const knob = menu_knob(closure_, &(storage_.*field), items, name, label);
    set_defaults(closure_, defaults_.*field);
    Tooltip(closure_, tooltip);
    return setting(knob, KnobFields::place(field));
}

Knob* PanelBuilder::color(KnobStorage::Color KnobStorage::*field, Text name, Text label, Text tooltip) {
    Knob* const knob = color_knob(closure_, &(storage_.*field), name, label);
    set_defaults(closure_, defaults_.*field);
    Tooltip(closure_, tooltip);
    return setting(knob, KnobFields::place(field));
}

Knob* PanelBuilder::color_alpha(KnobStorage::ColorAlpha KnobStorage::*field, Text name, Text label,
                                Text tooltip) {
    Knob* const knob = color_alpha_knob(closure_, &(storage_.*field), name, label);
    set_defaults(closure_, defaults_.*field);
    Tooltip(closure_, tooltip);
    return setting(knob, KnobFields::place(field));
}

Knob* PanelBuilder::size(KnobStorage::Size KnobStorage::*field, Text name, Text label, double high,
                         Text tooltip) {
    Knob* const knob = width_height_knob(closure_, &(storage_.*field), name, label);
    set_defaults(closure_, defaults_.*field);
    SetRange(closure_, 0.0, high);
    Tooltip(closure_, tooltip);
    return setting(knob, KnobFields::place(field));
}

Knob* PanelBuilder::reset(Text tooltip) {
    Knob* const knob = button(closure_, "reset", "reset");
    Tooltip(closure_, tooltip);
    resets_ = nullptr;
    return note(knob);
}

void PanelBuilder::tool(Tool tool, Text name, Text label, Text tooltip) {
    const auto number = static_cast<std::int32_t>(tool);
    refs_.tools_[static_cast<std::size_t>(tool)] =
        tool_button(closure_, &storage_.active_tool, number, name, label);
    Tooltip(closure_, tooltip);
}

void PanelBuilder::tool_group(Text caption) {
    toolbar_separator(closure_);
    if (!caption.empty()) text_knob(closure_, caption);
}

// The link itself stays active, or the enable could not be switched on again.
void PanelBuilder::tab(Text label, Text link, Knob* enable, Knob* second_enable, std::vector<Knob*>* resets) {
    tab_knob(closure_, label);
    enable_ = nullptr;
    resets_ = nullptr;
    if (enable == nullptr) return;
    link_knob(closure_, second_enable != nullptr ? second_enable : enable, link, "enable");
    if (closure_.last() != nullptr) Tooltip(closure_, closure_.last()->target().tooltip());
    enable_ = enable;
    second_enable_ = second_enable;
    resets_ = resets;
}

Knob* PanelBuilder::setting(Knob* knob, std::size_t place) {
    if (knob != nullptr) {
        refs_.settings_.push_back(knob);
        refs_.places_.push_back(place);
    }
    return note(knob);
}

Knob* PanelBuilder::note(Knob* knob) {
    if (knob == nullptr) return knob;
    if (enable_ != nullptr) refs_.dependencies_.push_back({knob, enable_, second_enable_});
    if (resets_ != nullptr) resets_->push_back(knob);
    return knob;
}

void PanelBuilder::finish() {
    refs_.update_enables();
}
