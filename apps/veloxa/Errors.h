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

// Ctrl-C: what was begun is given up.
class Interrupted : public Error {
  public:
    Interrupted() : Error("interrupted", kExitInterrupted) {}
};

// Prints "veloxa: TEXT" to standard error as one line, clearing the status line; any thread.
void report(std::string_view text);
// While one lives, what anybody prints to standard error is dropped, but for report and show_status: some
// libraries below the image library print there whatever they are told. Any thread; `file` is what it works
// on, and outlives it.
class Hush {
  public:
    explicit Hush(const std::string& file);
    ~Hush();
    Hush(const Hush&) = delete;
    Hush& operator=(const Hush&) = delete;

  private:
    const std::string* outer_;
};

// From now on, when a library aborts the whole program over a damaged file, the name of the file is reported:
// what the library says is dropped.
void report_aborts();

// Shows a line that the next status or report replaces; an empty one clears it. For terminals.
void show_status(std::string_view line);

}  // namespace veloxa
