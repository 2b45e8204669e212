#include <utility>

#include "Writers.h"

namespace veloxa {

namespace {

// What does not depend on the command line, with @program@ for its name and @prefix@ for where names of
// functions begin. `given`
// is what is typed of the value, `head` what stands before it in the same word, as --set= does.
constexpr const char* kHelpers = R"sh(# bash completion for @program@, made with the program.

# Proposes the arguments that begin as the word does. The shell replaces what follows the last = of it.
@prefix@_reply() {
    local word start=
    [[ $COMP_WORDBREAKS == *=* && $cur == *=* ]] && start=${cur%=*}=
    for word in "$@"; do
        word=$head$word
        [[ $word == "$cur"* ]] && COMPREPLY+=("${word#"$start"}")
    done
}

# Items with blanks are quoted as they would be typed.
@prefix@_items() {
    local item items=()
    for item in "$@"; do items+=("$(printf %q "$item")"); done
    @prefix@_reply "${items[@]}"
}

@prefix@_files() {
    cur=$given
    _filedir "$@"
}

)sh";

constexpr const char* kBegin = R"sh(@prefix@() {
    local cur prev words cword
    _init_completion -n := || return
    local command= option=$prev given=$cur head=
)sh";

// Some commands go on with another one.
constexpr const char* kFindCommand = R"sh(    local i
    for ((i = 1; i < cword; i++)); do
        [[ ${words[i]} == -* ]] && continue
        command+=${command:+ }${words[i]}
        [[ ' @groups@ ' == *" $command "* ]] || break
    done
)sh";

constexpr const char* kMiddle = R"sh(    if [[ $cur == --*=* ]]; then
        option=${cur%%=*} given=${cur#*=}
        head=$option=
    fi
    case $command:$option in
)sh";

constexpr const char* kEnd = R"sh(complete -F @prefix@ @program@
)sh";

std::string knob_function(const CommandLine& all) {
    std::vector<std::string> names;
    std::string cases;
    for (const KnobText& knob : all.knobs) {
        names.push_back(knob.name);
        if (knob.values.empty()) continue;
        cases += "        " + knob.name + "=*) head+=${given%%=*}= && @prefix@_items" +
                 words_of(knob.values) + " ;;\n";
    }
    return "@prefix@_knobs() {\n    case $given in\n" + cases +
           "        *=*) ;;\n        *)\n            compopt -o nospace\n            @prefix@_reply" +
           words_of(names, "=") + "\n            ;;\n    esac\n}\n\n";
}

// What follows an option that takes a value.
std::string action(const OptionText& option, const CommandLine& all) {
    switch (option.value) {
        case Value::kFile:
            return "@prefix@_files";
        case Value::kNamedFile:
            return "given=${given#*=} && @prefix@_files";
        case Value::kFolder:
            return "@prefix@_files -d";
        case Value::kChoice:
            return "@prefix@_items" + words_of(option.choices);
        case Value::kKnob:
            return "@prefix@_knobs";
        case Value::kTool:
            return "compopt -o nospace && @prefix@_reply" + words_of(all.tools, "=");
        case Value::kStage:
            return "@prefix@_reply" + words_of(all.stages);
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
        pattern += (pattern.empty() ? "" : "|") + quoted_for_shell(command.name) + ":" + name;
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
    for (const CommandText& one : command.commands.empty() ? all.commands : command.commands)
        commands.push_back(one.word());
    std::string otherwise = ":";
    if (command.name.empty() || !command.commands.empty()) otherwise = "@prefix@_reply" + words_of(commands);
    for (const OptionText& option : command.options) {
        if (!option.positional) continue;
        otherwise =
            option.value == Value::kCommand ? "@prefix@_reply" + words_of(commands) : "@prefix@_files";
    }
    return "        " + quoted_for_shell(command.name) + ":-*) @prefix@_reply" + names_of(command) +
           " ;;\n        " + quoted_for_shell(command.name) + ":*) " + otherwise + " ;;\n";
}

// A text of the above for this program.
std::string filled_in(std::string text, const CommandLine& all) {
    std::string groups;
    for (const CommandText& command : all.commands)
        if (!command.commands.empty()) groups += (groups.empty() ? "" : " ") + command.name;
    const std::pair<std::string, std::string> kinds[] = {
        {"@program@", all.name}, {"@groups@", groups}, {"@prefix@", prefix_of(all)}};
    for (const auto& [word, name] : kinds) {
        for (std::size_t at = text.find(word); at != text.npos; at = text.find(word, at + name.size()))
            text.replace(at, word.size(), name);
    }
    return text;
}

}  // namespace

std::string bash_completion(const CommandLine& all) {
    const std::vector<CommandText> lines = all.lines();
    std::string text =
        kHelpers + knob_function(all) + kBegin + (all.commands.empty() ? "" : kFindCommand) + kMiddle;
    for (const CommandText& line : lines) {
        for (const OptionText& option : line.options) {
            if (option.value != Value::kNone && !option.positional) text += case_of(line, option, all);
        }
    }
    text += "    esac\n    case $command:$cur in\n";
    for (const CommandText& line : lines) text += words_case(line, all);
    return filled_in(text + "    esac\n}\n" + kEnd, all);
}

}  // namespace veloxa
