// What the program says of itself.
#pragma once

#include <string>

namespace veloxa {

// "veloxa X.Y.Z"; when `verbose` also, a line each, what it was built with, the form of the keyer's
// arithmetic that this process runs, and the formats that image files are read and written in. What cannot be
// found out is said in its line.
std::string version_text(bool verbose);

}  // namespace veloxa
