#include "ZoImage/KnobClosure.h"

namespace Zo::Image {

namespace {

using Kind = Knob::Kind;

Knob* make_or_find(Knob_Closure& f, Kind kind, std::string_view name, std::string_view label,
                   Knob::Field field = {}) {
    if (!f.making()) return f.find(kind, name);
    return f.add(std::make_unique<Knob>(kind, name, label, field));
}

// The kind of a knob that writes through to the field.
Kind kind_of(const Knob::Field& field) {
    if (std::holds_alternative<bool*>(field)) return Kind::kBool;
    if (std::holds_alternative<std::int32_t*>(field)) return Kind::kMenu;
    if (std::holds_alternative<std::span<double>>(field)) return Kind::kWidthHeight;
    const std::size_t floats = std::get<std::span<float>>(field).size();
    return floats == 1 ? Kind::kFloat : floats == 3 ? Kind::kColor : Kind::kColorAlpha;
}

}  // namespace

Knob* value_knob(Knob_Closure& f, Knob::Field field, std::string_view name, std::string_view label,
                 std::vector<std::string> items) {
    Knob* const knob = make_or_find(f, kind_of(field), name, label, field);
    if (f.making()) knob->items(std::move(items));
    return knob;
}

Knob* plain_knob(Knob_Closure& f, Kind kind, std::string_view name, std::string_view label) {
    return make_or_find(f, kind, name, label);
}

Knob* link_knob(Knob_Closure& f, Knob* target, std::string_view name, std::string_view label) {
    Knob* const knob = make_or_find(f, Kind::kLink, name, label);
    if (f.making() && target != nullptr) knob->link_to(&target->target());
    return knob;
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
