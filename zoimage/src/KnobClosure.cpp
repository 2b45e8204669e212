#include "ZoImage/KnobClosure.h"

namespace Zo::Image {

namespace {

using Kind = Knob::Kind;

Knob* make_or_find(Knob_Closure& f, Kind kind, std::string_view name, std::string_view label,
                   Knob::Field field = {}) {
    if (!f.making()) return f.find(kind, name);
    return f.add(std::make_unique<Knob>(kind, name, label, field));
}

}  // namespace

Knob* bool_knob(Knob_Closure& f, bool* field, std::string_view name, std::string_view label) {
    return make_or_find(f, Kind::kBool, name, label, field);
}

Knob* float_knob(Knob_Closure& f, float* field, std::string_view name, std::string_view label) {
    return make_or_find(f, Kind::kFloat, name, label, std::span<float>(field, 1));
}

Knob* menu_knob(Knob_Closure& f, std::int32_t* field, std::initializer_list<std::string_view> items,
                std::string_view name, std::string_view label) {
    Knob* const knob = make_or_find(f, Kind::kMenu, name, label, field);
    if (f.making()) knob->items({items.begin(), items.end()});
    return knob;
}

Knob* color_knob(Knob_Closure& f, std::array<float, 3>* field, std::string_view name,
                 std::string_view label) {
    return make_or_find(f, Kind::kColor, name, label, std::span<float>(*field));
}

Knob* color_alpha_knob(Knob_Closure& f, std::array<float, 4>* field, std::string_view name,
                       std::string_view label) {
    return make_or_find(f, Kind::kColorAlpha, name, label, std::span<float>(*field));
}

Knob* width_height_knob(Knob_Closure& f, std::array<double, 2>* field, std::string_view name,
                        std::string_view label) {
    return make_or_find(f, Kind::kWidthHeight, name, label, std::span<double>(*field));
}

Knob* link_knob(Knob_Closure& f, Knob* target, std::string_view name, std::string_view label) {
    Knob* const knob = make_or_find(f, Kind::kLink, name, label);
    if (f.making() && target != nullptr) knob->link_to(&target->target());
    return knob;
}

Knob* tab_knob(Knob_Closure& f, std::string_view label) {
    return make_or_find(f, Kind::kTab, label, label);
}

Knob* text_knob(Knob_Closure& f, std::string_view text) {
    return make_or_find(f, Kind::kText, "", text);
}

Knob* spacer(Knob_Closure& f) {
    return text_knob(f, " ");
}

Knob* button(Knob_Closure& f, std::string_view name, std::string_view label, std::int32_t* field,
             std::initializer_list<std::string_view> items) {
    Knob* const knob =
        make_or_find(f, Kind::kButton, name, label, field ? Knob::Field(field) : Knob::Field());
    if (f.making()) knob->items({items.begin(), items.end()});
    return knob;
}

Knob* script_button(Knob_Closure& f, std::string_view command, std::string_view name,
                    std::string_view label) {
    Knob* const knob = make_or_find(f, Kind::kScriptButton, name, label);
    if (f.making()) knob->command(command);
    return knob;
}

Knob* begin_toolbar(Knob_Closure& f, std::string_view name) {
    return make_or_find(f, Kind::kBeginToolbar, name, "");
}

Knob* end_toolbar(Knob_Closure& f) {
    return make_or_find(f, Kind::kEndToolbar, "", "");
}

Knob* toolbar_separator(Knob_Closure& f) {
    return make_or_find(f, Kind::kToolbarSeparator, "", "");
}

Knob* tool_button(Knob_Closure& f, std::int32_t* field, std::int32_t number, std::string_view name,
                  std::string_view label) {
    Knob* const knob = make_or_find(f, Kind::kToolButton, name, label);
    if (f.making()) knob->join_toolbar(field, number);
    return knob;
}

void Tooltip(Knob_Closure& f, std::string_view text) {
    if (f.making() && f.last() != nullptr) f.last()->tooltip(text);
}

void SetRange(Knob_Closure& f, double low, double high) {
    if (f.making() && f.last() != nullptr) f.last()->range(low, high);
}

void SetDefault(Knob_Closure& f, std::span<const double> values) {
    if (f.making() && f.last() != nullptr) f.last()->set_default(values);
}

}  // namespace Zo::Image
