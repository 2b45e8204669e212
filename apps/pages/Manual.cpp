#include <algorithm>
#include <cctype>
#include <string_view>

#include "Writers.h"

namespace veloxa {

namespace {

constexpr std::string_view kExitStatus = "Exit status: ";
constexpr std::string_view kEnvironment = "Environment: ";

// Text as roff takes it. What stands in backquotes comes out bold.
std::string roff(std::string_view text) {
    std::string out;
    bool bold = false;
    if (text.starts_with('.') || text.starts_with('\'')) out = "\\&";
    for (const char c : text) {
        switch (c) {
            case '\\':
                out += "\\e";
                break;
            case '-':
                out += "\\-";
                break;
            case '~':
                out += "\\(ti";
                break;
            case '^':
                out += "\\(ha";
                break;
            case '`':
                bold = !bold;
                out += bold ? "\\fB" : "\\fR";
                break;
            default:
                out += c;
        }
    }
    return out;
}

std::string bold(std::string_view text) {
    return "\\fB" + roff(text) + "\\fR";
}

std::string italic(std::string_view text) {
    return "\\fI" + roff(text) + "\\fR";
}

std::string joined(const std::vector<std::string>& words, const char* between) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
    return text;
}

std::string value_text(const OptionText& option) {
    if (option.value != Value::kChoice) return italic(option.value_name);
    std::string text;
    for (const std::string& choice : option.choices) text += (text.empty() ? "" : "|") + bold(choice);
    return text;
}

// Those that the command goes on with.
const std::vector<CommandText>& within(const CommandLine& all, const CommandText& command) {
    return command.name.empty() ? all.commands : command.commands;
}

std::string synopsis(const CommandLine& all, const CommandText& command) {
    std::string text = ".SH SYNOPSIS\n" + bold(all.name + (command.name.empty() ? "" : " " + command.name));
    if (!within(all, command).empty())
        return text + " " + italic("COMMAND") + " [" + italic("OPTION") + " ...]\n";
    for (const OptionText& option : command.options) {
        if (option.required && !option.positional) {
            text += " " + bold(option.names.front()) + " " + value_text(option);
        }
    }
    text += " [" + italic("OPTION") + " ...]";
    for (const OptionText& option : command.options) {
        if (!option.positional) continue;
        std::string name = italic(option.names.front());
        if (option.repeats) name += " ...";
        text += option.required ? " " + name : " [" + name + "]";
    }
    return text + "\n";
}

std::string entry(const OptionText& option) {
    std::string head;
    for (const std::string& name : option.names) {
        head += (head.empty() ? "" : ", ") + (option.positional ? italic(name) : bold(name));
    }
    if (!option.value_name.empty() && !option.positional) head += " " + value_text(option);
    std::string text = ".TP\n" + head + "\n" + roff(option.meaning) + ".";
    if (!option.limits.empty()) text += " " + roff(option.limits) + ".";
    if (!option.preset.empty()) text += " Without it " + roff(option.preset) + ".";
    if (option.repeats) text += " It may be given several times.";
    if (!option.excludes.empty()) text += " Not together with " + roff(joined(option.excludes, ", ")) + ".";
    return text + "\n";
}

// Group by group, in the order in which the groups begin.
std::string options_of(const CommandText& command) {
    std::vector<std::string> groups;
    for (const OptionText& option : command.options) {
        if (std::find(groups.begin(), groups.end(), option.group) == groups.end())
            groups.push_back(option.group);
    }
    std::string text = ".SH OPTIONS\n";
    for (const std::string& group : groups) {
        if (group != "Options" && group != "Positionals") text += ".SS " + roff(group) + "\n";
        for (const OptionText& option : command.options) {
            if (option.group == group) text += entry(option);
        }
    }
    return text;
}

std::string commands_of(const CommandLine& all, const CommandText& command) {
    if (within(all, command).empty()) return {};
    std::string text = ".SH COMMANDS\nEach has a page of its own.\n";
    for (const CommandText& one : within(all, command)) {
        text += ".TP\n" + bold(page_name(all, one)) + "(1)\n" + roff(one.meaning) + "\n";
    }
    return text;
}

// The footer's lines: "  name  meaning" is an entry of a list, a deeper line goes on with it.
std::string prose_of(const CommandText& command) {
    std::string text;
    for (const std::string& line : command.notes) {
        if (line.starts_with(kExitStatus) || line.starts_with(kEnvironment) || line.empty()) continue;
        const std::size_t start = line.find_first_not_of(' ');
        if (start == 0 || start == std::string::npos) {
            text += ".PP\n" + roff(line) + "\n";
        } else if (start == 2 && line.find("  ", start) != std::string::npos) {
            const std::size_t gap = line.find("  ", start);
            text += ".TP\n" + bold(line.substr(start, gap - start)) + "\n" +
                    roff(line.substr(line.find_first_not_of(' ', gap))) + "\n";
        } else {
            text += roff(line.substr(start)) + "\n";
        }
    }
    return text;
}

// What a footer says behind a word, as a section; `otherwise` when it says nothing.
std::string section(const char* title, const CommandText& command, std::string_view word,
                    const std::string& otherwise) {
    std::string text = otherwise;
    for (const std::string& line : command.notes) {
        if (line.starts_with(word)) text = line.substr(word.size());
    }
    if (text.empty()) return {};
    if (std::islower(static_cast<unsigned char>(text[0]))) text[0] -= 'a' - 'A';
    return std::string(".SH ") + title + "\n" + roff(text) + "\n";
}

std::string see_also(const CommandLine& all, const CommandText& command) {
    std::vector<std::string> pages;
    if (!command.name.empty()) pages.push_back(bold(all.name) + "(1)");
    for (const CommandText& other : all.commands) {
        if (other.name != command.name) pages.push_back(bold(page_name(all, other)) + "(1)");
        if (!command.name.starts_with(other.name)) continue;
        for (const CommandText& near : other.commands) {
            if (near.name != command.name) pages.push_back(bold(page_name(all, near)) + "(1)");
        }
    }
    for (const std::string& page : all.related) pages.push_back(bold(page) + "(1)");
    return ".SH SEE ALSO\n" + joined(pages, ",\n") + "\n";
}

}  // namespace

std::string page_name(const CommandLine& all, const CommandText& command) {
    std::string name = all.name + (command.name.empty() ? "" : "-" + command.name);
    std::ranges::replace(name, ' ', '-');
    return name;
}

std::string manual_page(const CommandLine& all, const CommandText& command, const std::string& version) {
    std::string status;
    for (const std::string& line : all.program.notes) {
        if (line.starts_with(kExitStatus)) status = line.substr(kExitStatus.size());
    }
    std::string title = page_name(all, command);
    for (char& c : title) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    std::string brief = command.meaning;
    if (brief.ends_with('.')) brief.pop_back();
    if (!brief.empty()) brief[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(brief[0])));
    return ".TH " + roff(title) + " 1 \"\" \"veloxa " + roff(version) + "\" \"Veloxa\"\n.SH NAME\n" +
           roff(page_name(all, command)) + " \\- " + roff(brief) + "\n" + synopsis(all, command) +
           ".SH DESCRIPTION\n" + roff(command.meaning) + "\n" + prose_of(command) +
           commands_of(all, command) + options_of(command) +
           section("ENVIRONMENT", command, kEnvironment, "") +
           section("EXIT STATUS", command, kExitStatus, status) + see_also(all, command);
}

}  // namespace veloxa
