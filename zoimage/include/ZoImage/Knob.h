// One control of an operator's panel: what it is called, what values it takes, where they are kept.
//
// A knob that holds values writes through to plain fields of its operator, given by pointer when the knob is
// made, so an operator reads its own fields and never asks a knob. Values travel as doubles here; float
// fields narrow them. Setting a value tells nobody: call changed() when all of them are set.
// Used on the validation thread only. A knob must not outlive its operator.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "ZoImage/Box.h"

namespace Zo::Image {

class KnobPanel;

struct KnobRange {
    double low;
    double high;
};

// Flags of a knob, to be combined.
inline constexpr unsigned kKnobHidden = 1;
inline constexpr unsigned kKnobDisabled = 2;
inline constexpr unsigned kKnobHeld = 4;       // set by front ends: the operator's own tools leave the value
inline constexpr unsigned kKnobPixels = 8;     // its numbers count pixels of the image
inline constexpr unsigned kKnobScripted = 16;  // set by front ends: the value is a script's
inline constexpr unsigned kKnobLooks = 32;     // buttons: pressing it looks at the images on the inputs
inline constexpr unsigned kKnobUnscripted = 64;  // write_script leaves it out

class Knob {
  public:
    enum class Kind {
        kBool,
        kFloat,
        kMenu,          // index into items()
        kColor,         // red, green, blue
        kColorAlpha,    // red, green, blue, alpha
        kWidthHeight,   // width, height
        kLink,          // shows and edits target()
        kTab,           // the knobs that follow stand on this tab
        kText,          // a caption; the label " " is a spacer
        kButton,        // may choose one of items(), for what pressing it does
        kScriptButton,  // runs its command with the value that pressing it toggles between 0 and 1
        kBeginToolbar,
        kEndToolbar,
        kToolbarSeparator,
        kToolButton,  // values 0 to 3: the colour it shows; 4 to 7: the stroke's box x, y, r, t; see stroke()
        kCustom,      // a subclass; what it holds it reads and writes itself
    };

    // Where the values are kept; none for knobs without values.
    using Field = std::variant<std::monostate, bool*, std::int32_t*, std::span<float>, std::span<double>>;

    // The values that the field holds now are the defaults.
    Knob(Kind kind, std::string_view name, std::string_view label, Field field = {});
    virtual ~Knob();
    Knob(const Knob&) = delete;
    Knob& operator=(const Knob&) = delete;

    virtual const char* class_name() const { return "Knob"; }
    Kind kind() const { return kind_; }
    const std::string& name() const { return name_; }
    const std::string& label() const { return label_; }
    const std::string& tooltip() const { return tooltip_; }
    // Label of the tab that it stands on; inside a toolbar the toolbar's name; empty after a toolbar.
    const std::string& tab() const { return tab_; }
    // A guide for sliders; values outside are accepted.
    const std::optional<KnobRange>& range() const { return range_; }
    const std::vector<std::string>& items() const { return items_; }  // of a menu
    const std::string& command() const { return command_; }           // of a script button

    void tooltip(std::string_view text) { tooltip_ = text; }
    void tab(std::string_view label) { tab_ = label; }
    void range(double low, double high) { range_ = KnobRange{low, high}; }
    void items(std::vector<std::string> names) { items_ = std::move(names); }
    void command(std::string_view text) { command_ = text; }

    bool flag(unsigned bits) const { return (flags_ & bits) != 0; }
    void set_flag(unsigned bits, bool on) { flags_ = on ? flags_ | bits : flags_ & ~bits; }
    bool visible() const { return !flag(kKnobHidden); }
    void visible(bool on) { set_flag(kKnobHidden, !on); }
    bool enabled() const { return !flag(kKnobDisabled); }
    void enabled(bool on) { set_flag(kKnobDisabled, !on); }

    // The knob that a link edits; the knob itself for any other.
    Knob& target() { return target_ != nullptr ? *target_ : *this; }
    const Knob& target() const { return target_ != nullptr ? *target_ : *this; }
    void link_to(Knob* target) { target_ = target; }

    // Tool buttons: the tools of a toolbar share one field, which holds the number of the active tool.
    void join_toolbar(std::int32_t* active_tool, std::int32_t number);
    bool active() const { return active_tool_ != nullptr && *active_tool_ == tool_number_; }
    void activate();
    // The areas that a tool's stroke consists of, in pixels; empty ones are left out. Values 4 to 7 become
    // the box around them. Setting one of those values makes the stroke that one box again, rounded outward.
    void stroke(const std::vector<Box>& areas);
    std::vector<Box> stroke() const;

    // Values by position, 0 to value_count() - 1; links read and set their target's. A position that does not
    // exist reads as 0. set_value returns false, and changes nothing, for one and for a value that is not
    // finite or that the field cannot hold.
    int value_count() const;
    double get_value(int i = 0) const;
    bool set_value(double value, int i = 0);

    // True for the kinds whose value scripts and command lines may set (a link's goes to its target).
    bool takes_value() const;
    double default_value(int i = 0) const;
    void set_default(std::span<const double> values);
    virtual void restore_default();  // and tells nobody
    virtual bool differs_from_default() const;

    // Tells the panel, which tells the operator, that the value changed.
    void changed();
    // Opens a step that the panel's undo returns to; the name is for menus, may be null.
    void new_undo(const char* name = nullptr);
    // The panel that it sits in.
    void panel(KnobPanel* panel) { panel_ = panel; }

    // The value as scripts hold it. from_script returns false when the text is no value for this knob;
    // to_script puts several values in braces when `quote`. accepts_script says beforehand, changing
    // nothing, what from_script would return.
    virtual bool from_script(std::string_view text);
    virtual void to_script(std::ostream& out, bool quote) const;
    virtual bool accepts_script(std::string_view text) const;
    // What to_script writes, whatever the locale.
    std::string text(bool quote = false) const;

    // Reads text as this knob's values: numbers separated by commas or blanks, 0, 1, true or false, a menu
    // item by name or index; braces around it do not matter. Returns what is wrong, empty when nothing is.
    virtual std::string parse_text(std::string_view text, std::vector<double>& values) const;

    // Splits saved text into words at blanks and braces; quotes hold a word with blanks together.
    static void Script_List(std::string_view text, std::vector<std::string>& words);
    // The whole word as a number, whatever the locale; "inf" and "nan" are numbers here.
    static bool to_double(std::string_view word, double& value);

  private:
    void write_field(double value, std::size_t i);
    bool in_range_of_field(double value) const;
    std::string parse_bool(std::string_view text, std::vector<double>& values) const;
    std::string parse_menu(std::string_view text, std::vector<double>& values) const;
    std::string parse_numbers(std::string_view text, std::vector<double>& values) const;

    Kind kind_;
    std::string name_;
    std::string label_;
    std::string tooltip_;
    std::string tab_;
    std::string command_;
    std::optional<KnobRange> range_;
    std::vector<std::string> items_;
    unsigned flags_ = 0;
    Field field_;
    std::vector<double> defaults_;
    std::array<double, 8> tool_values_{};
    std::vector<Box> areas_;  // of the stroke, where they are several
    bool pressed_ = false;
    std::int32_t* active_tool_ = nullptr;
    std::int32_t tool_number_ = 0;
    Knob* target_ = nullptr;
    KnobPanel* panel_ = nullptr;
};

// "boolean", "float", "menu", "color", "color_alpha", "width_height", "link", "tab", "text", "button",
// "script_button", "begin_toolbar", "end_toolbar", "toolbar_separator", "tool_button", "custom".
const char* kind_name(Knob::Kind kind);

}  // namespace Zo::Image
