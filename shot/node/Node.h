// The keyer node, found through its plug-in, with its panel and the settings that the user gives it.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "ZoImage/Iop.h"
#include "ZoImage/KnobPanel.h"
#include "ZoImage/Render.h"
#include "shot/Caller.h"

namespace veloxa {

struct KnobSettings {
    std::string script;             // a file; empty for none
    std::vector<std::string> sets;  // KNOB=VALUE, after the script
};

// A whole file. Throws Error.
std::string read_text(const std::string& path);

class Node {
  public:
    // The flag, if given, outlives the node; raised, it stops the node's tools.
    explicit Node(const Zo::Image::AbortFlag* abort = nullptr);

    Zo::Image::Iop& image() const { return *image_; }
    Zo::Image::KnobPanel& panel() const { return *panel_; }

    // Throws Error for a script that does not fit, UsageError for a bad KNOB=VALUE. Warns, once a knob, of
    // values that are left beyond its range; they count as they are.
    void apply(const KnobSettings& settings, const Caller& caller);
    // The knobs that the settings applied so far name, whatever the value; a link names its target.
    const std::set<Zo::Image::Knob*>& named() const { return named_; }
    // The text of the script that was applied last; empty for none.
    const std::string& applied_text() const { return applied_text_; }
    // Presses a button that starts a tool, and tells what the tool did. Throws Interrupted.
    std::vector<Zo::Image::ToolReport> use_tool(Zo::Image::Knob& button) const;
    // The knobs that differ from their defaults, as a script.
    std::string script() const;

    // The internal operator of this name. Throws UsageError with the nearest name, or those that there are.
    Zo::Image::Iop& member(const std::string& name) const;
    // The names of those that make rows.
    std::vector<std::string> members() const;

  private:
    std::unique_ptr<Zo::Image::Op> op_;
    Zo::Image::Iop* image_;
    std::unique_ptr<Zo::Image::KnobPanel> panel_;
    std::set<Zo::Image::Knob*> named_;
    std::string applied_text_;
};

}  // namespace veloxa
