#include "Writers.h"

namespace veloxa {

namespace {

// What does not depend on the command line. `given` is what is typed of the value, `head` what stands before
// it in the same word, as --set= does.
constexpr const char* kHelpers = R"sh(# bash completion for veloxa, made with the program.

# Proposes the arguments that begin as the word does. The shell replaces what follows the last = of it.
_veloxa_reply() {
    local word start=
    [[ $COMP_WORDBREAKS == *=* && $cur == *=* ]] && start=${cur%=*}=
    for word in "$@"; do
        word=$head$word
        [[ $word == "$cur"* ]] && COMPREPLY+=("${word#"$start"}")
    done
}

# Items with blanks are quoted as they would be typed.
_veloxa_items() {
    local item items=()
    for item in "$@"; do items+=("$(printf %q "$item")"); done
    _veloxa_reply "${items[@]}"
}

_veloxa_files() {
    cur=$given
    _filedir "$@"
}

)sh";

constexpr const char* kBegin = R"sh(_veloxa() {
    local cur prev words cword
    _init_completion -n := || return
    local command= option=$prev given=$cur head= i
    for ((i = 1; i < cword; i++)); do
        [[ ${words[i]} == -* ]] || { command=${words[i]}; break; }
    done
    if [[ $cur == --*=* ]]; then
        option=${cur%%=*} given=${cur#*=}
        head=$option=
    fi
    case $command:$option in
)sh";

constexpr const char* kEnd = R"sh(complete -F _veloxa veloxa
)sh";

std::string knob_function(const CommandLine& all) {
    std::vector<std::string> names;
    std::string cases;
    for (const KnobText& knob : all.knobs) {
        names.push_back(knob.name);
        if (knob.values.empty()) continue;
        cases += "        " + knob.name + "=*) head+=${given%%=*}= && _veloxa_items" + words_of(knob.values) +
                 " ;;\n";
    }
    return "_veloxa_knobs() {\n    case $given in\n" + cases +
           "        *=*) ;;\n        *)\n            compopt -o nospace\n            _veloxa_reply" +
           words_of(names, "=") + "\n            ;;\n    esac\n}\n\n";
}

// What follows an option that takes a value.
std::string action(const OptionText& option, const CommandLine& all) {
    switch (option.value) {
        case Value::kFile:
            return "_veloxa_files";
        case Value::kNamedFile:
            return "given=${given#*=} && _veloxa_files";
        case Value::kFolder:
            return "_veloxa_files -d";
        case Value::kChoice:
            return "_veloxa_items" + words_of(option.choices);
        case Value::kKnob:
            return "_veloxa_knobs";
        case Value::kTool:
            return "compopt -o nospace && _veloxa_reply" + words_of(all.tools, "=");
        case Value::kStage:
            return "_veloxa_reply" + words_of(all.stages);
        case Value::kNone:
        case Value::kCommand:
        case Value::kOther:
            break;
    }
    return ":";
}

std::string case_of(const CommandText& command, const OptionText& option, const CommandLine& all) {
    std::string pattern;
    for (const std::string& name : option.names) {
        pattern += (pattern.empty() ? "" : "|") + command.name + ":" + name;
    }
    return "        " + pattern + ") " + action(option, all) + "; return ;;\n";
}

std::string names_of(const CommandText& command) {
    std::string names;
    for (const OptionText& option : command.options) {
        if (!option.positional) names += words_of(option.names);
    }
    return names;
}

// Where a word begins an option, or is no option's value.
std::string words_case(const CommandText& command, const CommandLine& all) {
    std::vector<std::string> commands;
    for (const CommandText& one : all.commands) commands.push_back(one.name);
    std::string otherwise = ":";
    if (command.name.empty()) otherwise = "_veloxa_reply" + words_of(commands);
    for (const OptionText& option : command.options) {
        if (!option.positional) continue;
        otherwise = option.value == Value::kCommand ? "_veloxa_reply" + words_of(commands) : "_veloxa_files";
    }
    return "        " + quoted_for_shell(command.name) + ":-*) _veloxa_reply" + names_of(command) +
           " ;;\n        " + quoted_for_shell(command.name) + ":*) " + otherwise + " ;;\n";
}

}  // namespace

std::string bash_completion(const CommandLine& all) {
    std::string text = kHelpers + knob_function(all) + kBegin;
    for (const CommandText& command : all.commands) {
        for (const OptionText& option : command.options) {
            if (option.value != Value::kNone && !option.positional) text += case_of(command, option, all);
        }
    }
    text += "    esac\n    case $command:$cur in\n" + words_case(all.program, all);
    for (const CommandText& command : all.commands) text += words_case(command, all);
    return text + "    esac\n}\n" + kEnd;
}

}  // namespace veloxa
