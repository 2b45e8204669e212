// A program's command line as data: what the manual pages and the completions of shells are written from.
#pragma once

#include <string>
#include <vector>

namespace veloxa {

// What an option's value is, as far as a shell can propose one.
enum class Value { kNone, kFile, kNamedFile, kFolder, kChoice, kKnob, kTool, kStage, kCommand, kOther };

struct OptionText {
    std::vector<std::string>
        names;  // with their dashes, short ones first; a positional's is its value's name
    bool positional = false;
    bool required = false;
    bool repeats = false;
    Value value = Value::kNone;
    std::string value_name;            // FILE, A-B[xN]; empty for a flag
    std::vector<std::string> choices;  // of kChoice
    std::string limits;                // "1 to 1024"
    std::string preset;                // its value when it is not given, where that is known
    std::string meaning;
    std::string group;
    std::vector<std::string> excludes;  // long names
};

struct CommandText {
    std::string name;  // empty for the program; of one within another both, as "farm check"
    std::string meaning;
    std::vector<std::string> notes;  // the footer's lines
    std::vector<OptionText> options;
    std::vector<CommandText> commands;  // within this one; the program's are in the CommandLine

    // Its last word.
    std::string word() const { return name.substr(name.find(' ') + 1); }
};

struct KnobText {
    std::string name;
    std::vector<std::string> values;  // where there are few
};

struct CommandLine {
    std::string name;     // of the program
    CommandText program;  // the whole command line where there are no commands
    std::vector<CommandText> commands;
    std::vector<KnobText> knobs;       // that take a value
    std::vector<std::string> tools;    // as --stroke takes them
    std::vector<std::string> stages;   // as --stage takes them
    std::vector<std::string> related;  // pages beside the commands'

    // The program, its commands, and behind each those within it.
    std::vector<CommandText> lines() const {
        std::vector<CommandText> lines{program};
        for (const CommandText& command : commands) {
            lines.push_back(command);
            lines.insert(lines.end(), command.commands.begin(), command.commands.end());
        }
        return lines;
    }
};

// What the functions that completions define begin with.
inline std::string prefix_of(const CommandLine& all) {
    std::string prefix = "_" + all.name;
    for (char& c : prefix) c = c == '-' ? '_' : c;
    return prefix;
}

// As one word of a POSIX shell.
inline std::string quoted_for_shell(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// As such words, each after a blank and with that behind it.
inline std::string words_of(const std::vector<std::string>& words, const char* behind = "") {
    std::string text;
    for (const std::string& word : words) text += " " + quoted_for_shell(word + behind);
    return text;
}

}  // namespace veloxa
