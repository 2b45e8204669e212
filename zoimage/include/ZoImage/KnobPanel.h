// The panel of one operator: owns its knobs, sets them from text, tells the operator of changes.
//
// Made by running the operator's knobs(). Every front end (command line, scripts, other hosts) reaches the
// operator's knobs through this class and has no list of its own. Validation thread only; the panel must not
// outlive its operator.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "ZoImage/KnobClosure.h"
#include "ZoImage/Op.h"

namespace Zo::Image {

// A knob that does not exist, or a value that it does not take; the text names both.
class KnobError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class KnobPanel final : public Knob_Closure {
  public:
    explicit KnobPanel(Op& op);
    ~KnobPanel() override;
    KnobPanel(const KnobPanel&) = delete;
    KnobPanel& operator=(const KnobPanel&) = delete;

    // In panel order. Tabs, texts and toolbars are knobs too.
    const std::vector<std::unique_ptr<Knob>>& knobs() const { return knobs_; }
    // The first knob of this name, null when there is none.
    Knob* find(std::string_view name) const;
    // As find, but throws a KnobError that proposes a name that looks alike.
    Knob& get(std::string_view name) const;

    // Runs knobs() again as a pass that only finds, for an operator to take its references anew.
    void refresh();

    // Sets a knob from text: numbers separated by commas or blanks, with or without braces; 0, 1, true or
    // false; a menu item by name or index. A link sets its target. Then tells the operator. Throws KnobError
    // and changes nothing when the text is no value for the knob; a range restricts nothing.
    void set_from_text(std::string_view name, std::string_view text);
    void set_from_text(Knob& knob, std::string_view text);
    // Throws as set_from_text would, and changes nothing. Returns the knob, a link's target for a link.
    Knob& check_text(std::string_view name, std::string_view text) const;

    // Presses a button: tells the operator, or runs the command of a script button.
    void press(Knob& knob);

    // Undoes the latest step that a knob opened; false when there is none. undo_name is its name for a menu.
    bool undo();
    std::string undo_name() const { return undo_.empty() ? std::string() : undo_.back().name; }

    bool making() const override { return making_; }
    Op& op() const override { return op_; }
    Knob* add(std::unique_ptr<Knob> knob) override;
    Knob* find(Knob::Kind kind, std::string_view name) override;
    Knob* last() const override { return last_; }

  private:
    struct UndoStep {
        Knob* knob;
        std::string name;
        std::string text;
    };

    friend class Knob;
    void changed(Knob& knob);
    void new_undo(Knob& knob, const char* name);
    void run_command(const Knob& knob);

    Op& op_;
    std::vector<std::unique_ptr<Knob>> knobs_;
    std::vector<UndoStep> undo_;
    std::vector<const Knob*> reporting_;  // knobs whose change the operator is being told of
    std::string tab_;
    std::size_t cursor_ = 0;
    Knob* last_ = nullptr;
    bool making_ = false;
};

}  // namespace Zo::Image
