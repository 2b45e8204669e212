// The keyer's panel, made from the table of its knobs, and what happens when one changes.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "ZoImage/KnobClosure.h"
#include "panel/KnobTable.h"
#include "panel/ShotModel_Knob.h"
#include "panel/VeloxaSample_Knob.h"

// The knobs of a panel. Until it was made there are none, and every call does nothing.
class PanelKnobs {
  public:
    // What a changed knob entails: tabs follow their enables, tools show the colours that they pick, "reset"
    // restores its tab. Returns 1 when the knob is one that the node acts on, else 0.
    int knob_changed(Zo::Image::Knob* knob);

    VeloxaSample_Knob* samples(SampleAction action) const;
    // What its list holds, also after the panel is gone; nothing before there was one.
    std::span<const VeloxaSample::Sample> sampled(SampleAction action) const;
    // The knob of the shot's model, and what it holds, also after the panel is gone; null while it is empty.
    Zo::Image::Knob* shot_knob() const;
    std::shared_ptr<const ShotModel> shot() const { return shot_ ? *shot_ : nullptr; }
    Zo::Image::Knob* tool(Tool tool) const;
    // The tool whose button this is.
    std::optional<Tool> tool_of(const Zo::Image::Knob* knob) const;
    // The knobs that hold the settings, in panel order.
    std::vector<Zo::Image::Knob*> settings() const;
    // Those and the lists of samples: all that a tool may change.
    std::vector<Zo::Image::Knob*> valued() const;
    // The fields of those that are held.
    KnobFields held() const;
    // Those of the settings that are held and write one of these fields.
    std::vector<Zo::Image::Knob*> held_among(const KnobFields& fields) const;

  private:
    friend void build_panel(Zo::Image::Knob_Closure& closure, KnobStorage& storage, PanelKnobs& refs);

    Zo::Image::Knob* find(KnobRow::Kind kind, int number) const;
    void update_enables();
    void reset_tab(std::size_t reset);
    void show_color(std::size_t row, Tool tool);

    std::vector<Zo::Image::Knob*> knobs_;  // one a row of the table
    // Hosts may take a panel down and render on.
    std::array<std::shared_ptr<const std::vector<VeloxaSample::Sample>>, kSampleActions> lists_;
    std::shared_ptr<ShotModel_Knob::Held> shot_;
    const KnobStorage* storage_ = nullptr;
};

// Describes the whole panel to the closure and keeps the references that `refs` needs.
void build_panel(Zo::Image::Knob_Closure& closure, KnobStorage& storage, PanelKnobs& refs);
