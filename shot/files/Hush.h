// Keeps the image library, and those below it, from printing to standard error.
#pragma once

#include <string>

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

// Stops what the image library prints by itself, whatever the environment asks for. Before any file is
// opened.
void silence_library();

}  // namespace veloxa
