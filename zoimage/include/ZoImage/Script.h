// Knob values as text.
//
//     # comment
//     Veloxa {
//         screen_color {0.1 0.45 0.15}
//         overlay_mode screen
//         film true
//     }
//
// One group a node, one knob a line, several values in braces. Only knobs that differ from their default are
// written (none that is unscripted), in panel order, numbers so that they read back to the same bits. The
// reader takes any bytes: a byte order mark and CRLF line ends are fine, anything else that does not fit
// throws a ScriptError.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Zo::Image {

class KnobPanel;

// "FILE:LINE: what is wrong and what was expected".
class ScriptError : public std::runtime_error {
  public:
    ScriptError(std::string_view file, int line, std::string_view what);
    int line() const { return line_; }

  private:
    int line_;
};

struct ScriptEntry {
    std::string name;
    std::string text;  // braces included
    int line;
};

struct ScriptGroup {
    std::string class_name;
    int line;
    std::vector<ScriptEntry> entries;
};

// The panel's group.
std::string write_script(const KnobPanel& panel);

// The groups of a script; `file_name` is for messages.
std::vector<ScriptGroup> read_script(std::string_view text, std::string_view file_name);

// The group of the class among them, null for none. Throws when there are two.
const ScriptGroup* find_group(const std::vector<ScriptGroup>& groups, std::string_view class_name,
                              std::string_view file_name);

// Sets the knobs that the group names and leaves the others as they are. Checks every line first: when one
// is bad, throws and has changed nothing.
void apply_script(KnobPanel& panel, const ScriptGroup& group, std::string_view file_name);

}  // namespace Zo::Image
