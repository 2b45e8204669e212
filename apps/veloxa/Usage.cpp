#include "Usage.h"

#include <algorithm>
#include <string_view>

#include "ZoImage/NearestName.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
    return text;
}

std::vector<std::string> names_of(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
    return names;
}

// "; did you mean --NAME?" for an argument that begins with a dash, empty where no option is near.
std::string option_guess(const CLI::App& app, std::string_view argument) {
    argument = argument.substr(0, argument.find('='));
    argument.remove_prefix(std::min(argument.find_first_not_of('-'), argument.size()));
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options()) {
        names.insert(names.end(), option->get_lnames().begin(), option->get_lnames().end());
    }
    const std::string_view nearest = nearest_name(argument, names);
    return nearest.empty() ? std::string() : "; did you mean --" + std::string(nearest) + "?";
}

// With the commands that it is one of, the program aside where it is none itself.
std::string name_of(const CLI::App& command) {
    const CLI::App* const parent = command.get_parent();
    if (parent == nullptr || parent->get_parent() == nullptr) return command.get_name();
    return name_of(*parent) + " " + command.get_name();
}

std::string see_help(const CLI::App& command) {
    const CLI::App* program = &command;
    while (program->get_parent() != nullptr) program = program->get_parent();
    return "; see " + (program != &command ? program->get_name() + " " : std::string()) + name_of(command) +
           " --help";
}

std::string message_for(const CLI::App& command, const CLI::ParseError& error) {
    const std::string name = name_of(command);
    const std::string help = see_help(command);
    const std::vector<std::string> left = command.remaining();
    for (const std::string& argument : left) {
        if (!argument.starts_with("-")) continue;
        std::string message = argument;
        message += ": " + name + " has no such option";
        const std::string guess = option_guess(command, argument);
        return message + (guess.empty() ? help : guess);
    }
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
        return joined(left) + ": more than " + name + " takes" + help;
    }
    const std::string what = error.what();
    return what.ends_with("?") ? what : what + help;
}

}  // namespace

OneOf::OneOf(const std::vector<std::string>& names) {
    desc_function_ = [names] { return CLI::detail::generate_set(names); };
    func_ = [names](const std::string& value) {
        if (std::ranges::find(names, value) != names.end()) return std::string();
        return value + " is none of " + joined(names) + did_you_mean(value, names);
    };
}

std::string usage_message(const CLI::App& app, const CLI::ParseError& error, const std::string& first) {
    const CLI::App* command = &app;
    for (auto chosen = app.get_subcommands(); !chosen.empty(); chosen = command->get_subcommands())
        command = chosen.front();
    const std::vector<std::string> names = names_of(*command);
    if (names.empty()) return message_for(*command, error);
    if (command != &app) {
        const std::vector<std::string> left = command->remaining();
        if (left.empty()) return "a command is needed: " + joined(names) + see_help(*command);
        if (!left.front().starts_with('-')) return no_such_command(*command, left.front());
        return message_for(*command, error);
    }
    if (first.starts_with("-")) {
        const std::string guess = option_guess(app, first);
        return first + ": a command comes first: " + joined(names) +
               (guess.empty() ? "; see veloxa --help" : guess);
    }
    if (first.empty()) return "a command is needed: " + joined(names) + "; see veloxa --help";
    return no_such_command(app, first);
}

std::string no_such_command(const CLI::App& app, const std::string& name) {
    return name + ": there is no such command" + choices(name, names_of(app));
}

}  // namespace veloxa
