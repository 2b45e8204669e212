// What processes that were killed have left beside the files that they made.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace veloxa {

// What another machine's process holds counts as left when nobody has touched it for so long; on this machine
// its lock tells at once.
inline constexpr std::chrono::minutes kUntouched{10};

// A hidden file that nobody writes any more.
struct Leftover {
    enum class Kind { kTemporary, kClaim };
    std::string path;
    Kind kind = Kind::kTemporary;
    std::string machine;  // of the process that has left it
    pid_t process = 0;
};

// Temporary files and claims of an output and of what is kept hidden beside it, in the order of their names.
// None whose lock is held; none that cannot be opened.
std::vector<Leftover> leftovers(const std::string& output_path);
// Of several outputs, whose folders are looked through once.
std::vector<Leftover> leftovers(const std::vector<std::string>& output_paths);

// Removes them, each once more looked at under its lock. Returns how many went.
int remove_leftovers(const std::vector<std::string>& output_paths);

}  // namespace veloxa
