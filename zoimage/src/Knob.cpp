#include "ZoImage/Knob.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "ZoImage/Convert.h"
#include "ZoImage/KnobPanel.h"

namespace Zo::Image {

namespace {

constexpr std::size_t kStrokeValues = 4;  // of a tool's values the first of the stroke's box

}  // namespace

Knob::Knob(Kind kind, std::string_view name, std::string_view label, Field field)
    : kind_(kind), name_(name), label_(label), field_(field) {
    if (kind_ == Kind::kToolButton) field_ = std::span<double>(tool_values_);
    if (kind_ == Kind::kScriptButton) field_ = &pressed_;
    for (int i = 0; i < value_count(); ++i) defaults_.push_back(get_value(i));
}

Knob::~Knob() = default;

void Knob::join_toolbar(std::int32_t* active_tool, std::int32_t number) {
    active_tool_ = active_tool;
    tool_number_ = number;
}

void Knob::activate() {
    if (active_tool_ != nullptr) *active_tool_ = tool_number_;
}

void Knob::stroke(const std::vector<Box>& areas) {
    if (target_ != nullptr) return target_->stroke(areas);
    if (kind_ != Kind::kToolButton) return;
    std::vector<Box> filled = areas;
    std::erase_if(filled, [](const Box& area) { return area.empty(); });
    Box around = areas.empty() ? Box{} : areas.front();
    for (const Box& area : filled) around.merge(area);
    std::size_t value = kStrokeValues;
    for (const int edge : {around.x, around.y, around.r, around.t}) write_field(edge, value++);
    if (filled.size() > 1) areas_ = std::move(filled);
}

std::vector<Box> Knob::stroke() const {
    if (target_ != nullptr) return target_->stroke();
    if (kind_ != Kind::kToolButton) return {};
    if (!areas_.empty()) return areas_;
    const auto down = [this](std::size_t i) { return to_int(std::floor(tool_values_[i])); };
    const auto up = [this](std::size_t i) { return to_int(std::ceil(tool_values_[i])); };
    return {{down(kStrokeValues), down(kStrokeValues + 1), up(kStrokeValues + 2), up(kStrokeValues + 3)}};
}

int Knob::value_count() const {
    if (target_ != nullptr) return target_->value_count();
    if (const auto* floats = std::get_if<std::span<float>>(&field_)) return static_cast<int>(floats->size());
    if (const auto* doubles = std::get_if<std::span<double>>(&field_)) {
        return static_cast<int>(doubles->size());
    }
    return std::holds_alternative<std::monostate>(field_) ? 0 : 1;
}

double Knob::get_value(int i) const {
    if (target_ != nullptr) return target_->get_value(i);
    if (i < 0 || i >= value_count()) return 0.0;
    const auto n = static_cast<std::size_t>(i);
    if (const auto* floats = std::get_if<std::span<float>>(&field_)) return static_cast<double>((*floats)[n]);
    if (const auto* doubles = std::get_if<std::span<double>>(&field_)) return (*doubles)[n];
    if (auto* const* flag = std::get_if<bool*>(&field_)) return **flag ? 1.0 : 0.0;
    return **std::get_if<std::int32_t*>(&field_);
}

bool Knob::set_value(double value, int i) {
    if (target_ != nullptr) return target_->set_value(value, i);
    if (i < 0 || i >= value_count() || !in_range_of_field(value)) return false;
    write_field(value, static_cast<std::size_t>(i));
    return true;
}

bool Knob::in_range_of_field(double value) const {
    if (!std::isfinite(value)) return false;
    if (std::holds_alternative<std::span<float>>(field_)) {
        return std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max());
    }
    if (std::holds_alternative<std::int32_t*>(field_)) {
        return value >= 0.0 && value < static_cast<double>(items_.size());
    }
    return true;
}

void Knob::write_field(double value, std::size_t i) {
    if (auto* floats = std::get_if<std::span<float>>(&field_)) {
        (*floats)[i] = static_cast<float>(value);
    } else if (auto* doubles = std::get_if<std::span<double>>(&field_)) {
        (*doubles)[i] = value;
        if (i >= kStrokeValues) areas_.clear();
    } else if (auto* flag = std::get_if<bool*>(&field_)) {
        **flag = value != 0.0;
    } else if (auto* index = std::get_if<std::int32_t*>(&field_)) {
        **index = to_int(value);
    }
}

bool Knob::takes_value() const {
    switch (target().kind_) {
        case Kind::kBool:
        case Kind::kFloat:
        case Kind::kMenu:
        case Kind::kColor:
        case Kind::kColorAlpha:
        case Kind::kWidthHeight:
        case Kind::kCustom:
            return true;
        default:
            return false;
    }
}

double Knob::default_value(int i) const {
    const std::vector<double>& defaults = target().defaults_;
    return i >= 0 && i < static_cast<int>(defaults.size()) ? defaults[static_cast<std::size_t>(i)] : 0.0;
}

void Knob::set_default(std::span<const double> values) {
    std::copy_n(values.begin(), std::min(values.size(), defaults_.size()), defaults_.begin());
}

void Knob::restore_default() {
    if (target_ != nullptr) return target_->restore_default();
    for (std::size_t i = 0; i < defaults_.size(); ++i) write_field(defaults_[i], i);
}

// Bits, not numbers: a script that left out -0 where the default is 0 would not read back to the same bits.
bool Knob::differs_from_default() const {
    if (target_ != nullptr) return target_->differs_from_default();
    for (int i = 0; i < value_count(); ++i) {
        if (std::bit_cast<std::uint64_t>(get_value(i)) != std::bit_cast<std::uint64_t>(default_value(i))) {
            return true;
        }
    }
    return false;
}

void Knob::changed() {
    Knob& knob = target();
    if (knob.panel_ != nullptr) knob.panel_->changed(knob);
}

void Knob::new_undo(const char* name) {
    Knob& knob = target();
    if (knob.panel_ != nullptr) knob.panel_->new_undo(knob, name);
}

const char* kind_name(Knob::Kind kind) {
    constexpr std::array<const char*, 16> kNames{"boolean",       "float",
                                                 "menu",          "color",
                                                 "color_alpha",   "width_height",
                                                 "link",          "tab",
                                                 "text",          "button",
                                                 "script_button", "begin_toolbar",
                                                 "end_toolbar",   "toolbar_separator",
                                                 "tool_button",   "custom"};
    return kNames[static_cast<std::size_t>(kind)];
}

}  // namespace Zo::Image
