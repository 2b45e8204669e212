// Finds out whether a DPX file's header is sane.
#pragma once

#include <string>

namespace veloxa {

// False for a DPX that claims more user data than the file has bytes, on which the library ends the program.
bool dpx_head_is_sane(const std::string& path);

}  // namespace veloxa
