#include "ZoImage/Script.h"

#include <algorithm>
#include <map>

#include "Text.h"
#include "ZoImage/KnobPanel.h"

namespace Zo::Image {

namespace {

constexpr bool is_word_char(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// The line without its comment; a # between quotes begins none.
std::string_view without_comment(std::string_view line) {
    bool in_quotes = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"') in_quotes = !in_quotes;
        if (line[i] == '#' && !in_quotes) return line.substr(0, i);
    }
    return line;
}

// Takes the name that the text begins with off it; empty when it begins with none.
std::string_view take_name(std::string_view& text) {
    const auto end = std::find_if_not(text.begin(), text.end(), is_word_char);
    const std::string_view name = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(name.size());
    return name;
}

// What is wrong with the form of a value, null when nothing is.
const char* value_fault(std::string_view value) {
    if (value.front() == '"') {
        const std::size_t end = value.find('"', 1);
        if (end == std::string_view::npos) return "'\"' is expected at the end of the value";
        return end + 1 == value.size() ? nullptr : "nothing may follow the closing '\"'";
    }
    if (value.front() != '{') {
        if (value.find_first_of("{}\"") != std::string_view::npos) {
            return "a value is one word, or several in braces; '}' of a group stands on a line of its own";
        }
        return std::any_of(value.begin(), value.end(), is_blank) ? "several values must stand in braces"
                                                                 : nullptr;
    }
    int depth = 0;
    for (std::size_t i = 0; i < value.size(); ++i) {
        depth += value[i] == '{' ? 1 : value[i] == '}' ? -1 : 0;
        if (depth == 0) return i + 1 == value.size() ? nullptr : "nothing may follow the closing '}'";
    }
    return "'}' is expected at the end of the value";
}

class Reader {
  public:
    Reader(std::string_view text, std::string_view file) : text_(text), file_(file) {
        if (text_.starts_with("\xef\xbb\xbf")) text_.remove_prefix(3);
    }

    std::vector<ScriptGroup> read() {
        while (!text_.empty()) {
            const std::size_t end = std::min(text_.find('\n'), text_.size());
            const std::string_view line = trim(without_comment(text_.substr(0, end)));
            text_.remove_prefix(std::min(end + 1, text_.size()));
            ++line_;
            if (line.empty()) continue;
            if (open_) {
                read_entry(line);
            } else {
                read_header(line);
            }
        }
        if (open_) {
            const ScriptGroup& group = groups_.back();
            fail("'}' is expected: the group " + quoted(group.class_name) + " of line " +
                 std::to_string(group.line) + " is not closed");
        }
        return std::move(groups_);
    }

  private:
    [[noreturn]] void fail(const std::string& what) const { throw ScriptError(file_, line_, what); }

    void read_header(std::string_view line) {
        std::string_view rest = line;
        const std::string_view name = take_name(rest);
        if (name.empty()) fail("a group 'CLASS {' is expected; got " + quoted(line));
        rest = trim(rest);
        if (rest.empty() || rest.front() != '{') fail("'{' is expected after " + quoted(name));
        rest = trim(rest.substr(1));
        if (!rest.empty() && rest != "}") fail("the knobs of a group stand on lines of their own");
        groups_.push_back({std::string(name), line_, {}});
        lines_.clear();
        open_ = rest.empty();
    }

    void read_entry(std::string_view line) {
        if (line == "}") {
            open_ = false;
            return;
        }
        std::string_view value = line;
        const std::string_view name = take_name(value);
        const bool separated =
            value.empty() || is_blank(value.front()) || value.front() == '{' || value.front() == '"';
        if (name.empty() || !separated) fail("'name value' or '}' is expected; got " + quoted(line));
        value = trim(value);
        if (value.empty()) fail("a value is expected after " + quoted(name));
        if (const char* const fault = value_fault(value)) fail(fault);
        const auto [earlier, fresh] = lines_.emplace(name, line_);
        if (!fresh) {
            fail(quoted(name) + " is given a second time; line " + std::to_string(earlier->second) +
                 " has it already");
        }
        groups_.back().entries.push_back({std::string(name), std::string(value), line_});
    }

    std::string_view text_;
    std::string_view file_;
    int line_ = 0;
    bool open_ = false;
    std::vector<ScriptGroup> groups_;
    std::map<std::string, int, std::less<>> lines_;  // of the knobs of the open group
};

}  // namespace

ScriptError::ScriptError(std::string_view file, int line, std::string_view what)
    : std::runtime_error(std::string(file) + ":" + std::to_string(line) + ": " + std::string(what)),
      line_(line) {}

std::string write_script(const KnobPanel& panel) {
    std::string out = std::string(panel.op().class_name()) + " {\n";
    for (const auto& knob : panel.knobs()) {
        if (knob->kind() == Knob::Kind::kLink || knob->flag(kKnobUnscripted)) continue;
        if (!knob->takes_value() || !knob->differs_from_default()) continue;
        out += "    " + knob->name() + ' ' + knob->text(true) + '\n';
    }
    return out + "}\n";
}

std::vector<ScriptGroup> read_script(std::string_view text, std::string_view file_name) {
    return Reader(text, file_name).read();
}

const ScriptGroup* find_group(const std::vector<ScriptGroup>& groups, std::string_view class_name,
                              std::string_view file_name) {
    const ScriptGroup* found = nullptr;
    for (const ScriptGroup& group : groups) {
        if (group.class_name != class_name) continue;
        if (found != nullptr) {
            throw ScriptError(file_name, group.line,
                              "a second " + group.class_name + " group; one node is keyed");
        }
        found = &group;
    }
    return found;
}

void apply_script(KnobPanel& panel, const ScriptGroup& group, std::string_view file_name) {
    if (group.class_name != panel.op().class_name()) {
        throw ScriptError(
            file_name, group.line,
            "a group " + quoted(panel.op().class_name()) + " is expected; got " + quoted(group.class_name));
    }
    std::map<const Knob*, const ScriptEntry*> seen;
    for (const ScriptEntry& entry : group.entries) {
        try {
            const auto [earlier, fresh] = seen.emplace(&panel.check_text(entry.name, entry.text), &entry);
            if (!fresh) {
                throw KnobError(quoted(entry.name) + " sets the same knob as " +
                                quoted(earlier->second->name) + " on line " +
                                std::to_string(earlier->second->line));
            }
        } catch (const KnobError& error) {
            throw ScriptError(file_name, entry.line, error.what());
        }
    }
    for (const ScriptEntry& entry : group.entries) panel.set_from_text(entry.name, entry.text);
}

}  // namespace Zo::Image
