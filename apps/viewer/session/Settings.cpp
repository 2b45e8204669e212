#include "session/Settings.h"

#include <algorithm>

namespace veloxa::viewer {

using namespace Zo::Image;

namespace {

std::vector<Knob*> valued(const KnobPanel& panel) {
    std::vector<Knob*> knobs;
    for (const auto& knob : panel.knobs()) {
        if (knob->takes_value() && knob->kind() != Knob::Kind::kLink) knobs.push_back(knob.get());
    }
    return knobs;
}

}  // namespace

Settings::Settings(const KnobPanel& panel, const Settings& before) {
    const std::vector<Knob*> knobs = valued(panel);
    auto values = std::make_shared<std::vector<Value>>();
    values->reserve(knobs.size());
    for (std::size_t n = 0; n < knobs.size(); ++n) {
        std::string text = knobs[n]->text();
        const bool same = !before.empty() && *(*before.values_)[n] == text;
        values->push_back(same ? (*before.values_)[n] : std::make_shared<const std::string>(std::move(text)));
    }
    values_ = std::move(values);
}

void Settings::give(KnobPanel& panel) const {
    if (empty()) return;
    const std::vector<Knob*> knobs = valued(panel);
    std::vector<Knob*> changed;
    for (std::size_t n = 0; n < knobs.size(); ++n) {
        const std::string& text = *(*values_)[n];
        if (knobs[n]->text() != text && knobs[n]->from_script(text)) changed.push_back(knobs[n]);
    }
    for (Knob* const knob : changed) knob->changed();
}

Settings Settings::changed(const Settings& before, const Settings& after) const {
    auto values = std::make_shared<std::vector<Value>>(*values_);
    for (std::size_t n = 0; n < values->size(); ++n) {
        if (*(*before.values_)[n] != *(*after.values_)[n]) (*values)[n] = (*after.values_)[n];
    }
    Settings merged;
    merged.values_ = std::move(values);
    return merged;
}

std::vector<KnobChange> Settings::changes_since(const Settings& before, const KnobPanel& panel) const {
    std::vector<KnobChange> changes;
    const std::vector<Knob*> knobs = valued(panel);
    for (std::size_t n = 0; n < knobs.size(); ++n) {
        if (knobs[n]->kind() == Knob::Kind::kCustom) continue;
        const std::string& was = *(*before.values_)[n];
        const std::string& is = *(*values_)[n];
        if (was != is) changes.push_back({knobs[n]->name(), was, is});
    }
    return changes;
}

void Settings::append_to(Hash& hash) const {
    if (empty()) return;
    for (const Value& value : *values_) hash.append(std::string_view(*value));
}

bool operator==(const Settings& a, const Settings& b) {
    if (a.values_ == b.values_) return true;
    if (a.empty() || b.empty()) return false;
    return std::ranges::equal(*a.values_, *b.values_, [](const Settings::Value& x, const Settings::Value& y) {
        return x == y || *x == *y;
    });
}

}  // namespace veloxa::viewer
