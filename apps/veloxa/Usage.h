// What the program says of a command line that makes no sense.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace veloxa {

// Check of an option's value; where it is none of these the message lists them and guesses which was meant.
class OneOf : public CLI::Validator {
  public:
    explicit OneOf(const std::vector<std::string>& names);
};

// The line for a parser's error; `first` is the first argument. An option that does not exist comes before
// what the parser missed for want of it.
std::string usage_message(const CLI::App& app, const CLI::ParseError& error, const std::string& first);

// The same for a command that there is not: the nearest name, or those that there are.
std::string no_such_command(const CLI::App& app, const std::string& name);

}  // namespace veloxa
