#include "Writers.h"

namespace veloxa {

namespace {

std::string quoted(const std::string& text) {
    std::string out = "'";
    for (const char c : text) out += c == '\'' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    return out + "'";
}

std::string joined(const std::vector<std::string>& words, const char* behind = "") {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + word + behind;
    return text;
}

// The knobs with =, or once one is typed with it, all that it may be.
std::string knob_function(const CommandLine& all) {
    std::string names;
    std::string cases;
    for (const KnobText& knob : all.knobs) {
        names += " " + knob.name + "=";
        if (knob.values.empty()) continue;
        cases += "        case " + quoted(knob.name + "=*") + "\n            printf '%s\\n'";
        for (const std::string& value : knob.values) cases += " " + quoted(knob.name + "=" + value);
        cases += "\n";
    }
    return "function __veloxa_knobs\n    switch (commandline -ct | string replace -r -- '^--[a-z-]+=' '' | "
           "string unescape)\n" +
           cases + "        case '*=*'\n        case '*'\n            printf '%s\\n'" + names +
           "\n    end\nend\n\n";
}

std::string action(const OptionText& option, const CommandLine& all) {
    switch (option.value) {
        case Value::kFile:
        case Value::kNamedFile:
            return " -r -F";
        case Value::kFolder:
            return " -x -a '(__fish_complete_directories)'";
        case Value::kChoice:
            return " -x -a " + quoted(joined(option.choices));
        case Value::kKnob:
            return " -x -a '(__veloxa_knobs)'";
        case Value::kTool:
            return " -x -a " + quoted(joined(all.tools, "="));
        case Value::kStage:
            return " -x -a " + quoted(joined(all.stages));
        case Value::kOther:
            return " -x";
        case Value::kNone:
        case Value::kCommand:
            break;
    }
    return "";
}

std::string line_of(const std::string& condition, const OptionText& option, const CommandLine& all) {
    std::string line = "complete -c veloxa -n " + quoted(condition);
    for (const std::string& name : option.names) {
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    return line + action(option, all) + " -d " + quoted(option.meaning) + "\n";
}

}  // namespace

std::string fish_completion(const CommandLine& all) {
    std::vector<std::string> commands;
    for (const CommandText& command : all.commands) commands.push_back(command.name);
    const std::string before = "not __fish_seen_subcommand_from " + joined(commands);
    std::string text = "# fish completion for veloxa, made with the program.\n\n" + knob_function(all) +
                       "complete -c veloxa -f\n";
    for (const OptionText& option : all.program.options) text += line_of(before, option, all);
    for (const CommandText& command : all.commands) {
        text += "complete -c veloxa -n " + quoted(before) + " -a " + command.name + " -d " +
                quoted(command.meaning) + "\n";
    }
    for (const CommandText& command : all.commands) {
        // `help key` has two of their names.
        const std::string here = command.name == "help" ? "__fish_seen_subcommand_from help"
                                                        : "not __fish_seen_subcommand_from help; and "
                                                          "__fish_seen_subcommand_from " +
                                                              command.name;
        for (const OptionText& option : command.options) {
            if (!option.positional) {
                text += line_of(here, option, all);
            } else if (option.value == Value::kCommand) {
                text += "complete -c veloxa -n " + quoted(here) + " -a " + quoted(joined(commands)) + "\n";
            } else {
                text += "complete -c veloxa -n " + quoted(here) + " -F\n";
            }
        }
    }
    return text;
}

}  // namespace veloxa
