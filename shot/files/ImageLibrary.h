// What the image library lacks: silence, messages for people, an eye for some faults of files.
#pragma once

#include <string>
#include <string_view>

namespace veloxa {

// While one lives, what anybody prints to standard error is dropped: some libraries below the image library
// print there whatever they are told. Any thread; `file` is what it works on, and outlives it.
class Hush {
  public:
    explicit Hush(const std::string& file);
    ~Hush();
    Hush(const Hush&) = delete;
    Hush& operator=(const Hush&) = delete;

    // The file under this thread's innermost one, null without; a signal's handler may ask.
    static const std::string* file();

  private:
    const std::string* outer_;
};

// The first line, without the file's name, which the program's own message already has. `otherwise` stands
// in for an empty message.
std::string tidy_message(std::string_view message, std::string_view path, std::string_view otherwise);

// What is wrong with the file; empty for all that is well or not looked for here. The library that decodes
// PNG prints to standard error when a chunk is cut off, and never looks at what follows the last pixel; a DPX
// that claims more user data than it has bytes ends the program.
std::string fault_unseen(const std::string& path);

}  // namespace veloxa
