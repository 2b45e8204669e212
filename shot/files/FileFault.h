// Faults of files that the image library does not see, or sees too late.
#pragma once

#include <string>

namespace veloxa {

// What is wrong with the file; empty for all that is well or not looked for here. The library that decodes
// PNG prints to standard error when a chunk is cut off, and never looks at what follows the last pixel; a DPX
// that claims more user data than it has bytes ends the program.
std::string fault_unseen(const std::string& path);

}  // namespace veloxa
