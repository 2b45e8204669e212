// A hidden file beside the one that it is to become, locked as long as this lives.
//
// Its name, .STEM.MACHINE.PID-N.EXT, tells who writes it, and the lock that somebody does, for it goes with
// the process however that ends. Whoever opens the file by its name may close it again: the lock belongs to
// what is open here.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace veloxa {

// This machine since it was started: the host's name, and what no other start of any machine has. Letters,
// digits, - and _.
const std::string& machine_name();

// What the lock of an open file is; kUnknown where the file system knows no locks.
enum class Lock { kFree, kTaken, kUnknown };
// Looks at it as others see it.
Lock look_at_lock(int file);
// Takes it where it is free; kTaken says that it is another's. It is let go of when `file`, open for writing,
// is closed.
Lock take_lock(int file);

// Whether the name still is that of the open file.
bool is_name_of(const std::string& path, int file);

// Of a temporary file's name: the file that it is to become, and who writes it.
struct TemporaryName {
    std::string file;
    std::string machine;
    pid_t process = 0;
};
// Nothing where a file of this name, without its folder, is no temporary file.
std::optional<TemporaryName> parse_temporary(const std::string& name);

class TemporaryFile {
  public:
    // Creates it, empty. Throws TryAgain where what is in the way may pass, else Error.
    explicit TemporaryFile(const std::string& path);
    // Removes it unless it was renamed.
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& name() const { return name_; }
    // Open for reading and writing.
    int handle() const { return handle_; }
    // Gives it the name, in one step that only one of several can succeed in unless `replace`. Returns 0 or
    // the system's error.
    int rename(const std::string& path, bool replace);

  private:
    std::string name_;
    int handle_ = -1;
    bool renamed_ = false;
};

}  // namespace veloxa
