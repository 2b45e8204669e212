// What the system says is wrong, by its error numbers.
#pragma once

#include <string>

namespace veloxa {

// Whether the fault may be gone at another try: a disk or a quota that is full, a server that does not
// answer, a device that fails, memory that lacks. Not what is wrong with a file or a name.
bool may_pass(int error);

// Throws TryAgain where the fault may pass, else Error; `what` is the system's own text where it is empty.
[[noreturn]] void throw_fault(const std::string& path, int error, const std::string& what = {});

// Reads all bytes of a file, for who was not told why it could not be used. The system's error; 0 where it
// has none.
int fault_of_reading(const std::string& path);

// Likewise writes behind the end of a file that is open, which is to be removed.
int fault_of_writing(int file);

}  // namespace veloxa
