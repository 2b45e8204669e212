// The keyer's panel as one table, a row a knob, in panel order. Hosts see the panel as the rows describe it,
// the controls are written as they say, and tools turn and hold knobs by them. Defaults stand with the
// fields, in KnobStorage.
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <variant>

#include "ZoImage/Knob.h"
#include "controls/ControlBlock.h"
#include "panel/KnobStorage.h"

// The sampling actions, in panel order.
enum class SampleAction {
    kAddOverlay,
    kAddOverlayCp,
    kRemoveOverlay,
    kRemoveOverlayCp,
    kRestoreSpill,
    kRemoveSpill,
    kUnmixBacking,
    kUnmixSolid,
    kUnmixSeeThrough,
    kUnmixOwn
};
inline constexpr int kSampleActions = static_cast<int>(SampleAction::kUnmixOwn) + 1;
// The number of the knob that holds the shot's model, among those that read and write themselves.
inline constexpr int kShotKnob = kSampleActions;

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
    kUnmixBacking,
    kUnmixSolid,
    kUnmixSeeThrough,
    kUnmixOwn,
    kFindScreen,
    kSetUp,
    kAnalyseShot
};

using KnobField = std::variant<std::monostate, bool KnobStorage::*, float KnobStorage::*,
                               std::int32_t KnobStorage::*, KnobStorage::Color KnobStorage::*,
                               KnobStorage::ColorAlpha KnobStorage::*, KnobStorage::Size KnobStorage::*>;

// How far a slider goes, which restricts nothing; nowhere when both ends are 0.
struct KnobReach {
    double low = 0.0;
    double high = 0.0;
    double lowest = low;  // how far tools turn the knob
    double highest = high;
    bool pixels = false;  // counts pixels of the image

    constexpr bool given() const { return low != high; }
    constexpr KnobReach turned(double from, double to) const { return {low, high, from, to, pixels}; }
};

// The controls that a knob is copied into: factor * value + offset in single precision, truncated.
struct KnobTarget {
    enum class Scale {
        kNumber,     // as it is
        kLevel,      // encoded, as levels of pixels are
        kTolerance,  // encoded; tools count it as straight, finer than the control above the knee
    };

    static constexpr int kNone = -1;

    ControlGroup controls{kNone, kNone, kNone};    // width and height for sizes
    std::int32_t ControlBlock::*height = nullptr;  // of sizes whose control is the width alone
    bool by_role = false;                          // the group is one colour in role order
    bool always = false;                           // copied while the tab is switched off, too
    Scale scale = Scale::kNumber;
    float factor = 1.0f;
    float offset = 0.0f;

    constexpr KnobTarget times(float by, float plus = 0.0f) const {
        KnobTarget target = *this;
        target.factor = by;
        target.offset = plus;
        return target;
    }
    constexpr KnobTarget when_off() const {
        KnobTarget target = *this;
        target.always = true;
        return target;
    }
};

struct KnobRow {
    using Text = std::string_view;
    using Kind = Zo::Image::Knob::Kind;

    KnobField field{};  // that it writes; of links the one that their knob writes
    Text name{};
    Text label{};
    Text tooltip{};  // links have that of the knob they set
    KnobReach reach{};
    KnobTarget target{};
    std::array<Text, 4> items{};

    std::optional<Kind> kind{};           // of rows that are no setting
    bool KnobStorage::*enable = nullptr;  // tabs: what their knobs, and the copies of them, wait for
    bool KnobStorage::*second_enable = nullptr;
    int number = 0;  // a Tool or a SampleAction; of a button 0 for "reset"

    constexpr bool setting() const { return !kind; }
    bool on(const KnobStorage& knobs) const {
        return (enable == nullptr || knobs.*enable) && (second_enable == nullptr || knobs.*second_enable);
    }
};

std::span<const KnobRow> knob_table();

// The row that writes the field, by its number in the table.
std::size_t knob_row(KnobField field);

// A set of settings, as those that are held, or that a tool turns.
class KnobFields {
  public:
    static constexpr std::size_t kMost = 160;  // rows

    void add(KnobField field) { add_row(knob_row(field)); }
    void add_row(std::size_t row) { rows_.set(row); }
    bool has(KnobField field) const { return has_row(knob_row(field)); }
    bool has_row(std::size_t row) const { return rows_.test(row); }
    // Whether `other` has all of these.
    bool all_in(const KnobFields& other) const { return (rows_ & ~other.rows_).none(); }

  private:
    std::bitset<kMost> rows_;
};
