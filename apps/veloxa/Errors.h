// Errors that end a command, and the program's exit statuses.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace veloxa {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;
inline constexpr int kExitInterrupted = 130;

// What is wrong, without the program's name; main prints it after "veloxa: " and exits with the status.
class Error : public std::runtime_error {
  public:
    explicit Error(const std::string& what, int status = kExitFailure)
        : std::runtime_error(what), status_(status) {}
    // FILE: what is wrong.
    Error(std::string_view file, std::string_view what)
        : Error(std::string(file) + ": " + std::string(what)) {}

    int status() const { return status_; }

  private:
    int status_;
};

// A mistake on the command line.
class UsageError : public Error {
  public:
    explicit UsageError(const std::string& what) : Error(what, kExitUsage) {}
};

// Prints "veloxa: TEXT" to standard error as one line, also while progress is shown; any thread.
void report(std::string_view text);

}  // namespace veloxa
