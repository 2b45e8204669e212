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
    return "function _" + prefix_of(all) +
           "_knobs\n    switch (commandline -ct | string replace -r -- '^--[a-z-]+=' '' | "
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
            return " -x -a '(_" + prefix_of(all) + "_knobs)'";
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

// A completion where the condition holds; everywhere without one.
std::string line(const CommandLine& all, const std::string& condition, const std::string& rest) {
    return "complete -c " + all.name + (condition.empty() ? "" : " -n " + quoted(condition)) + rest + "\n";
}

std::string line_of(const std::string& condition, const OptionText& option, const CommandLine& all) {
    std::string names;
    for (const std::string& name : option.names) {
        names += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    return line(all, condition, names + action(option, all) + " -d " + quoted(option.meaning));
}

std::string lines_of(const std::string& condition, const CommandText& command, const CommandLine& all,
                     const std::string& commands) {
    std::string text;
    for (const OptionText& option : command.options) {
        if (!option.positional) {
            text += line_of(condition, option, all);
        } else if (option.value == Value::kCommand) {
            text += line(all, condition, " -a " + quoted(commands));
        } else {
            text += line(all, condition, " -F");
        }
    }
    return text;
}

}  // namespace

std::string fish_completion(const CommandLine& all) {
    std::vector<std::string> names;
    for (const CommandText& command : all.commands) names.push_back(command.name);
    const std::string commands = joined(names);
    const std::string before = names.empty() ? "" : "not __fish_seen_subcommand_from " + commands;
    std::string text = "# fish completion for " + all.name + ", made with the program.\n\n" +
                       knob_function(all) + line(all, "", " -f");
    text += lines_of(before, all.program, all, commands);
    for (const CommandText& command : all.commands) {
        text += line(all, before, " -a " + command.name + " -d " + quoted(command.meaning));
    }
    for (const CommandText& command : all.commands) {
        // `help key` has two of their names.
        const std::string here = command.name == "help" ? "__fish_seen_subcommand_from help"
                                                        : "not __fish_seen_subcommand_from help; and "
                                                          "__fish_seen_subcommand_from " +
                                                              command.name;
        std::string words;
        for (const CommandText& one : command.commands) words += " " + one.word();
        for (const CommandText& one : command.commands) {
            text += lines_of(here + "; and __fish_seen_subcommand_from " + one.word(), one, all, commands);
        }
        const std::string open =
            words.empty() ? here : here + "; and not __fish_seen_subcommand_from" + words;
        for (const CommandText& one : command.commands)
            text += line(all, open, " -a " + one.word() + " -d " + quoted(one.meaning));
        text += lines_of(open, command, all, commands);
    }
    return text;
}

}  // namespace veloxa
