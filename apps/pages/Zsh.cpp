#include "Writers.h"

namespace veloxa {

namespace {

// As part of an option's specification, where brackets, colons and backslashes have a meaning.
std::string escaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') out += '\\';
        out += c;
    }
    return out;
}

std::string knob_function(const CommandLine& all) {
    std::string names;
    std::string cases;
    for (const KnobText& knob : all.knobs) {
        names += " " + knob.name;
        if (!knob.values.empty())
            cases += "            " + knob.name + ") compadd --" + words_of(knob.values) + " ;;\n";
    }
    return prefix_of(all) +
           "_knobs() {\n    if compset -P '*='; then\n        case ${${IPREFIX%=}##*=} in\n" + cases +
           "        esac\n    else\n        compadd -q -S = --" + names + "\n    fi\n}\n\n";
}

std::string tool_function(const CommandLine& all) {
    return prefix_of(all) + "_tools() {\n    compadd -q -S = --" + words_of(all.tools) + "\n}\n\n" +
           prefix_of(all) + "_stages() {\n    compadd --" + words_of(all.stages) + "\n}\n\n";
}

std::string action(const OptionText& option, const std::string& prefix) {
    switch (option.value) {
        case Value::kFile:
            return "_files";
        case Value::kNamedFile:
            return "{ compset -P \"*=\"; _files }";
        case Value::kFolder:
            return "_files -/";
        case Value::kKnob:
            return prefix + "_knobs";
        case Value::kTool:
            return prefix + "_tools";
        case Value::kStage:
            return prefix + "_stages";
        case Value::kCommand:
            return prefix + "_commands";
        case Value::kChoice: {
            std::string choices;
            for (const std::string& choice : option.choices) choices += (choices.empty() ? "" : " ") + choice;
            return "(" + choices + ")";
        }
        case Value::kNone:
        case Value::kOther:
            break;
    }
    return " ";
}

// One argument of _arguments a name.
std::string specifications(const OptionText& option, const std::string& prefix) {
    const bool flag = option.value == Value::kNone;
    const std::string value = flag ? "" : ":" + escaped(option.value_name) + ":" + action(option, prefix);
    if (option.positional) return " \\\n        " + quoted_for_shell((option.repeats ? "*" : "") + value);
    std::string instead;
    for (const std::string& name : option.excludes) instead += (instead.empty() ? "" : " ") + name;
    if (!option.repeats) {
        for (const std::string& name : option.names) instead += (instead.empty() ? "" : " ") + name;
    }
    const std::string front = (instead.empty() ? "" : "(" + instead + ")") + (option.repeats ? "*" : "");
    std::string text;
    for (const std::string& name : option.names) {
        const char* const ending = flag ? "" : name.starts_with("--") ? "=" : "+";
        std::string one = front;
        one += name;
        one += ending;
        one += "[" + escaped(option.meaning) + "]" + value;
        text += " \\\n        " + quoted_for_shell(one);
    }
    return text;
}

std::string arguments_of(const CommandText& command, const std::string& prefix) {
    std::string text = "_arguments";
    for (const OptionText& option : command.options) text += specifications(option, prefix);
    return text;
}

// What follows the name of a command, which may go on with another one.
std::string case_of(const CommandText& command, const std::string& prefix) {
    std::string text = "    " + command.word() + ")\n    " + arguments_of(command, prefix);
    if (command.commands.empty()) return text + " ;;\n";
    std::string names;
    for (const CommandText& one : command.commands) names += (names.empty() ? "" : " ") + one.word();
    text += " \\\n        '1:command:(" + names + ")' \\\n        '*::argument:->within'\n" +
            "    [[ $state == within ]] || return\n    case $line[1] in\n";
    for (const CommandText& one : command.commands) text += case_of(one, prefix);
    return text + "    esac ;;\n";
}

// The function's body behind the program's own arguments.
std::string commands_of(const CommandLine& all, const std::string& prefix) {
    std::string text = " \\\n        '1:command:" + prefix +
                       "_commands' \\\n        '*::argument:->command'\n"
                       "    [[ $state == command ]] || return\n    case $line[1] in\n";
    for (const CommandText& command : all.commands) text += case_of(command, prefix);
    return text + "    esac";
}

}  // namespace

std::string zsh_completion(const CommandLine& all) {
    const std::string prefix = prefix_of(all);
    std::string text = "#compdef " + all.name + "\n# zsh completion for " + all.name +
                       ", made with the program.\n\n" + knob_function(all) + tool_function(all);
    if (!all.commands.empty()) text += prefix + "_commands() {\n    local -a commands=(\n";
    for (const CommandText& command : all.commands) {
        text += "        " + quoted_for_shell(command.name + ":" + command.meaning) + "\n";
    }
    if (!all.commands.empty()) text += "    )\n    _describe command commands\n}\n\n";
    text += prefix + "() {\n    local context state state_descr line\n    typeset -A opt_args\n    " +
            arguments_of(all.program, prefix);
    if (!all.commands.empty()) text += commands_of(all, prefix);
    return text + "\n}\n\n" + prefix + " \"$@\"\n";
}

}  // namespace veloxa
