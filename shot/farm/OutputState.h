// What there is of an output that was asked for.
#pragma once

#include <string>

#include "ZoImage/Render.h"

namespace veloxa {

enum class OutputState {
    kWhole,    // as it was asked for
    kStale,    // asked for otherwise, or by nobody knows whom
    kBroken,   // cannot be read to its end
    kMissing,  // no such file
};

// Reads the header alone of a file that holds another fingerprint, and else the whole file. Throws
// Interrupted.
OutputState output_state(const std::string& path, const std::string& fingerprint,
                         const Zo::Image::AbortFlag* abort);

}  // namespace veloxa
