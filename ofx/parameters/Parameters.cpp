#include "parameters/Parameters.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

#include "ZoImage/KnobDisplay.h"
#include "abi/OfxParam.h"

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

// Null for knobs that are no parameter.
const char* type_of(Knob::Kind kind) {
    static constexpr std::pair<Knob::Kind, const char*> kTypes[]{
        {Knob::Kind::kBool, kOfxParamTypeBoolean},
        {Knob::Kind::kFloat, kOfxParamTypeDouble},
        {Knob::Kind::kMenu, kOfxParamTypeChoice},
        {Knob::Kind::kColor, kOfxParamTypeRGB},
        {Knob::Kind::kColorAlpha, kOfxParamTypeRGBA},
        {Knob::Kind::kWidthHeight, kOfxParamTypeDouble2D},
        {Knob::Kind::kCustom, kOfxParamTypeString},
        {Knob::Kind::kButton, kOfxParamTypePushButton},
        {Knob::Kind::kScriptButton, kOfxParamTypePushButton},
        {Knob::Kind::kToolButton, kOfxParamTypePushButton}};
    for (const auto& [known, type] : kTypes) {
        if (known == kind) return type;
    }
    return nullptr;
}

// "Screen Correct" becomes "screen_correct".
std::string identifier(std::string_view text) {
    std::string name;
    for (const char c : text) {
        const bool upper = c >= 'A' && c <= 'Z';
        const bool plain = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
        name += upper ? static_cast<char>(c - 'A' + 'a') : (plain ? c : '_');
    }
    return name;
}

std::string trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == text.npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::string captioned(const std::string& caption, const std::string& word) {
    return caption.empty() ? word : caption + ": " + word;
}

}  // namespace

bool Parameter::is_button() const {
    return std::string_view(type) == kOfxParamTypePushButton;
}

bool Parameter::is_text() const {
    return std::string_view(type) == kOfxParamTypeString;
}

double Parameter::scale(const RenderScale& scale, int i) const {
    return knob->flag(kKnobPixels) ? scale[i == 0 ? 0 : 1] : 1.0;
}

ParameterList::ParameterList(const KnobPanel& panel) {
    std::map<std::string, int> uses;
    for (const auto& knob : panel.knobs()) ++uses[knob->name()];
    std::string caption;
    std::size_t group = Parameter::kNoGroup;
    std::size_t sampling = Parameter::kNoGroup;
    std::string tab;
    for (const auto& knob : panel.knobs()) {
        if (knob->tab() != tab) {
            tab = knob->tab();
            group = Parameter::kNoGroup;
            if (!tab.empty()) {
                group = groups_.size();
                const bool toolbar = knob->kind() == Knob::Kind::kBeginToolbar;
                const std::string name = toolbar ? "sampling" : identifier(tab);
                if (toolbar) sampling = group;
                groups_.push_back({"group_" + name, "page_" + name, toolbar ? "Sampling" : tab, {}, toolbar});
            }
        }
        if (knob->kind() == Knob::Kind::kToolbarSeparator) caption.clear();
        if (knob->kind() == Knob::Kind::kText) caption = trimmed(knob->label());  // blank for a spacer
        if (knob->kind() == Knob::Kind::kLink && group != Parameter::kNoGroup) {
            groups_[group].members.push_back(knob->target().name());
        }
        const char* const type = type_of(knob->kind());
        if (type == nullptr) continue;
        const bool tool = knob->kind() == Knob::Kind::kToolButton;
        std::string name = knob->name();
        if (uses[name] > 1) name.insert(0, identifier(tab) + "_");
        const std::string label = tool ? captioned(caption, tool_label(knob->label()).word) : knob->label();
        // One that stands on a tab before it stays there.
        const bool looks = knob->flag(kKnobLooks) && sampling != Parameter::kNoGroup;
        const std::size_t place = looks ? sampling : group;
        if (place != Parameter::kNoGroup) groups_[place].members.push_back(name);
        parameters_.push_back({knob.get(), name, label, type, place});
    }
}

std::vector<std::size_t> ParameterList::tools() const {
    std::vector<std::size_t> tools;
    for (std::size_t n = 0; n < parameters_.size(); ++n) {
        if (parameters_[n].knob->kind() == Knob::Kind::kToolButton) tools.push_back(n);
    }
    return tools;
}

bool is_black(const Value& colour) {
    return std::all_of(colour.numbers.begin(), colour.numbers.begin() + 3,
                       [](double v) { return static_cast<float>(v) == 0.0f; });
}

Value knob_value(const Parameter& parameter, const RenderScale& scale) {
    Value value;
    const Knob& knob = *parameter.knob;
    if (parameter.is_text()) value.text = knob.text();
    for (int i = 0; i < std::min(4, knob.value_count()); ++i) {
        const double number = knob.get_value(i);
        const double factor = parameter.scale(scale, i);
        value.numbers[static_cast<std::size_t>(i)] = factor == 1.0 ? shown(knob, number) : number / factor;
    }
    return value;
}

bool set_knob(const Parameter& parameter, const Value& value, const RenderScale& scale) {
    Knob& knob = *parameter.knob;
    if (parameter.is_button()) return false;
    if (parameter.is_text()) {
        if (value.text == knob.text()) return false;
        if (!knob.from_script(value.text)) knob.restore_default();
        return true;
    }
    constexpr double kLargest = std::numeric_limits<float>::max();
    bool changed = false;
    for (int i = 0; i < knob.value_count(); ++i) {
        const double before = knob.get_value(i);
        const double wanted = value.numbers[static_cast<std::size_t>(i)] * parameter.scale(scale, i);
        const double limited = std::isfinite(wanted) ? std::clamp(wanted, -kLargest, kLargest)
                                                     : knob.default_value(i) * parameter.scale(scale, i);
        if (!knob.set_value(limited, i)) knob.set_value(knob.default_value(i), i);
        changed = changed || knob.get_value(i) != before;
    }
    return changed;
}

}  // namespace veloxa::ofx
