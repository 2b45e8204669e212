// The keyer's panel: the one description of its knobs, and what happens when one changes.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "ZoImage/KnobClosure.h"
#include "panel/KnobFields.h"
#include "panel/KnobStorage.h"
#include "panel/VeloxaSample_Knob.h"

// The sampling actions, in panel order.
enum class SampleAction {
    kAddOverlay,
    kAddOverlayCp,
    kRemoveOverlay,
    kRemoveOverlayCp,
    kRestoreSpill,
    kRemoveSpill
};

// The tools of the viewer's toolbar, in panel order; the numbers are what the toolbar's field holds. Behind
// them those that look at the whole foreground.
enum class Tool {
    kScreen,
    kAddOverlay,
    kRemoveOverlay,
    kAddMatte,
    kRemoveNoise,
    kRestoreSpill,
    kRemoveSpill,
    kMatchColor,
    kMatchShadow,
    kHoldShadow,
    kRestoreDetail,
    kFindScreen,
    kSetUp
};

// The knobs that the node acts on. All null, and every call does nothing, until the panel was made.
class PanelKnobs {
  public:
    // What a changed knob entails. Returns 1 when the knob is one that the node acts on, else 0.
    int knob_changed(Zo::Image::Knob* knob);

    // The panel's own part of that: after a change of an enable, tabs follow. Returns 1 when it was one.
    int handle(Zo::Image::Knob* knob);

    // The "reset" buttons.
    void reset_screen_correct();
    void reset_spill();

    VeloxaSample_Knob* samples(SampleAction action) const {
        return samples_[static_cast<std::size_t>(action)];
    }
    Zo::Image::Knob* tool(Tool tool) const { return tools_[static_cast<std::size_t>(tool)]; }
    // The tool whose button this is.
    std::optional<Tool> tool_of(const Zo::Image::Knob* knob) const;
    // The knobs that hold the settings, in panel order.
    const std::vector<Zo::Image::Knob*>& settings() const { return settings_; }
    // Those and the lists of samples: all that a tool may change.
    std::vector<Zo::Image::Knob*> valued() const;
    // The fields of those that are held.
    KnobFields held() const;
    // Those of the settings that are held and write one of these fields.
    std::vector<Zo::Image::Knob*> held_among(const KnobFields& fields) const;

  private:
    friend class PanelBuilder;

    // The knob is active while both enables are on; the second may be null.
    struct Dependency {
        Zo::Image::Knob* knob;
        Zo::Image::Knob* enable;
        Zo::Image::Knob* second_enable;
    };

    void update_enables();
    void clear_samples(SampleAction first, SampleAction last);

    std::vector<Dependency> dependencies_;
    std::vector<Zo::Image::Knob*> settings_;
    std::vector<std::size_t> places_;                     // of the field that each of them writes
    std::vector<Zo::Image::Knob*> screen_correct_knobs_;  // what the tab's "reset" restores
    std::vector<Zo::Image::Knob*> spill_knobs_;
    std::array<VeloxaSample_Knob*, 6> samples_{};
    std::array<Zo::Image::Knob*, 13> tools_{};
    Zo::Image::Knob* screen_color_ = nullptr;
    Zo::Image::Knob* overlay_mode_ = nullptr;
    Zo::Image::Knob* shadows_tint_ = nullptr;
    Zo::Image::Knob* screen_correct_reset_ = nullptr;
    Zo::Image::Knob* spill_reset_ = nullptr;
};

// Describes the whole panel to the closure and keeps the references that `refs` needs.
void build_panel(Zo::Image::Knob_Closure& closure, KnobStorage& storage, PanelKnobs& refs);
