#include "panel/Panel.h"

#include <algorithm>

using namespace Zo::Image;
using K = KnobStorage;
using Kind = Knob::Kind;

namespace {

bool is_enable(const KnobField& field) {
    const auto* const flag = std::get_if<bool K::*>(&field);
    return flag != nullptr && std::ranges::any_of(knob_table(), [&](const KnobRow& row) {
               return row.enable == *flag || row.second_enable == *flag;
           });
}

template <class T>
Knob::Field field_at(T& value) {
    if constexpr (std::is_same_v<T, float>) {
        return std::span(&value, 1);
    } else if constexpr (std::is_arithmetic_v<T>) {
        return &value;
    } else {
        return std::span(value);
    }
}

template <class T>
void set_default(Knob_Closure& f, T value) {
    SetDefault(f, std::array{static_cast<double>(value)});
}
template <class T, std::size_t N>
void set_default(Knob_Closure& f, const std::array<T, N>& values) {
    SetDefault(f, std::vector<double>(values.begin(), values.end()));
}

Knob* setting(Knob_Closure& f, const KnobRow& row, KnobStorage& storage) {
    Knob* knob = nullptr;
    std::visit(
        [&](auto field) {
            if constexpr (!std::is_same_v<decltype(field), std::monostate>) {
                const auto* const end = std::find(row.items.begin(), row.items.end(), "");
                knob = value_knob(f, field_at(storage.*field), row.name, row.label, {row.items.begin(), end});
                set_default(f, KnobStorage{}.*field);
            }
        },
        row.field);
    if (row.reach.given()) SetRange(f, row.reach.low, row.reach.high);
    if (knob != nullptr) knob->set_flag(kKnobPixels, row.reach.pixels);
    return knob;
}

// A "reset", or a tool that looks at the whole foreground.
Knob* action(Knob_Closure& f, const KnobRow& row, KnobStorage& storage) {
    if (row.number == 0) return button(f, row.name, row.label);
    const auto& items = row.items;
    Knob* const knob = items[0].empty() ? button(f, row.name, row.label)
                                        : button(f, row.name, row.label, &storage.screen_choice,
                                                 {items[0], items[1], items[2], items[3]});
    if (knob != nullptr) knob->set_flag(kKnobLooks, true);
    return knob;
}

// What is no setting; `knobs` are those of the rows before.
Knob* piece(Knob_Closure& f, const KnobRow& row, KnobStorage& storage, std::span<Knob* const> knobs) {
    switch (*row.kind) {
        case Kind::kLink:
            return link_knob(f, knobs[knob_row(row.field)], row.name, row.label);
        case Kind::kTab:
            return plain_knob(f, *row.kind, row.label, row.label);
        case Kind::kText:
        case Kind::kBeginToolbar:
        case Kind::kToolbarSeparator:
        case Kind::kEndToolbar:
            return plain_knob(f, *row.kind, row.name, row.label);
        case Kind::kButton:
            return action(f, row, storage);
        case Kind::kScriptButton:
            return script_button(f, "knob overlay_mono $value", row.name, row.label);
        case Kind::kToolButton:
            return tool_button(f, &storage.active_tool, row.number, row.name, row.label);
        default:
            if (row.number == kShotKnob) return custom_knob<ShotModel_Knob>(f, row.name);
            return custom_knob<VeloxaSample_Knob>(f, row.name, &f.op());
    }
}

}  // namespace

void build_panel(Knob_Closure& closure, KnobStorage& storage, PanelKnobs& refs) {
    refs.storage_ = &storage;
    refs.knobs_.clear();
    for (const KnobRow& row : knob_table()) {
        refs.knobs_.push_back(row.setting() ? setting(closure, row, storage)
                                            : piece(closure, row, storage, refs.knobs_));
        const bool link = row.kind == Kind::kLink;
        Tooltip(closure, link ? knob_table()[knob_row(row.field)].tooltip : row.tooltip);
    }
    for (std::size_t i = 0; i < refs.lists_.size(); ++i) {
        const VeloxaSample_Knob* const list = refs.samples(static_cast<SampleAction>(i));
        if (list != nullptr) refs.lists_[i] = list->shared();
    }
    if (const auto* const shot = static_cast<ShotModel_Knob*>(refs.shot_knob())) refs.shot_ = shot->shared();
    refs.update_enables();
}

int PanelKnobs::knob_changed(Knob* knob) {
    if (knob == nullptr) return 0;
    const auto found = std::find(knobs_.begin(), knobs_.end(), &knob->target());
    if (found == knobs_.end()) return 0;
    const auto at = static_cast<std::size_t>(found - knobs_.begin());
    const KnobRow& row = knob_table()[at];
    if (row.field == KnobField(&K::screen_color)) {
        show_color(at, Tool::kScreen);
    } else if (row.field == KnobField(&K::shadows_tint)) {
        show_color(at, Tool::kMatchShadow);
    } else if (row.kind == Kind::kButton && row.number == 0) {
        reset_tab(at);
    } else if (is_enable(row.field)) {
        update_enables();
    } else {
        return tool_of(knob) ? 1 : 0;
    }
    return 1;
}

VeloxaSample_Knob* PanelKnobs::samples(SampleAction action) const {
    return static_cast<VeloxaSample_Knob*>(find(Kind::kCustom, static_cast<int>(action)));
}

std::span<const VeloxaSample::Sample> PanelKnobs::sampled(SampleAction action) const {
    const auto& list = lists_[static_cast<std::size_t>(action)];
    if (list == nullptr) return {};
    return *list;
}

Knob* PanelKnobs::shot_knob() const {
    return find(Kind::kCustom, kShotKnob);
}

Knob* PanelKnobs::tool(Tool tool) const {
    return find(tool < Tool::kFindScreen ? Kind::kToolButton : Kind::kButton, static_cast<int>(tool));
}

Knob* PanelKnobs::find(Kind kind, int number) const {
    for (std::size_t i = 0; i < knobs_.size(); ++i) {
        const KnobRow& row = knob_table()[i];
        if (row.kind == kind && row.number == number) return knobs_[i];
    }
    return nullptr;
}

std::optional<Tool> PanelKnobs::tool_of(const Knob* knob) const {
    const auto found = std::find(knobs_.begin(), knobs_.end(), knob);
    if (knob == nullptr || found == knobs_.end()) return std::nullopt;
    const KnobRow& row = knob_table()[static_cast<std::size_t>(found - knobs_.begin())];
    const bool starts = row.kind == Kind::kToolButton || (row.kind == Kind::kButton && row.number != 0);
    return starts ? std::optional(static_cast<Tool>(row.number)) : std::nullopt;
}

std::vector<Knob*> PanelKnobs::settings() const {
    std::vector<Knob*> settings;
    for (std::size_t i = 0; i < knobs_.size(); ++i) {
        if (knob_table()[i].setting()) settings.push_back(knobs_[i]);
    }
    return settings;
}

std::vector<Knob*> PanelKnobs::valued() const {
    std::vector<Knob*> knobs = settings();
    for (int i = 0; i < kSampleActions; ++i) {
        if (Knob* const list = find(Kind::kCustom, i)) knobs.push_back(list);
    }
    return knobs;
}

KnobFields PanelKnobs::held() const {
    KnobFields fields;
    for (std::size_t i = 0; i < knobs_.size(); ++i) {
        if (knob_table()[i].setting() && knobs_[i]->flag(kKnobHeld)) fields.add_row(i);
    }
    return fields;
}

std::vector<Knob*> PanelKnobs::held_among(const KnobFields& fields) const {
    std::vector<Knob*> knobs;
    for (std::size_t i = 0; i < knobs_.size(); ++i) {
        if (fields.has_row(i) && knobs_[i]->flag(kKnobHeld)) knobs.push_back(knobs_[i]);
    }
    return knobs;
}

// A tab's links stay active, or its enable could not be switched on again.
void PanelKnobs::update_enables() {
    const KnobRow* tab = nullptr;
    for (std::size_t i = 0; i < knobs_.size(); ++i) {
        const KnobRow& row = knob_table()[i];
        if (row.kind == Kind::kTab) tab = &row;
        const bool follows = row.setting() || row.kind == Kind::kButton;
        if (tab != nullptr && follows) knobs_[i]->enabled(tab->on(*storage_));
    }
}

void PanelKnobs::reset_tab(std::size_t reset) {
    std::size_t tab = reset;
    while (knob_table()[tab].kind != Kind::kTab) --tab;
    for (std::size_t i = 0; i < knobs_.size(); ++i) {
        const KnobRow& row = knob_table()[i];
        const bool in_tab = row.setting() ? tab < i && i < reset
                                          : row.kind == Kind::kCustom && row.label == knob_table()[tab].label;
        if (in_tab) knobs_[i]->restore_default();
    }
}

// On a tool's button.
void PanelKnobs::show_color(std::size_t row, Tool tool) {
    Knob& button = *this->tool(tool);
    for (int i = 0; i < 3; ++i) button.set_value(knobs_[row]->get_value(i), i);
    button.set_value(1.0, 3);
}
