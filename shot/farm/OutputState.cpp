#include "shot/farm/OutputState.h"

#include <filesystem>

#include "shot/Errors.h"
#include "shot/farm/StatusFile.h"
#include "shot/files/ImageFile.h"

namespace veloxa {

OutputState output_state(const std::string& path, const std::string& fingerprint,
                         const Zo::Image::AbortFlag* abort) try {
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored)) return OutputState::kMissing;
    const std::string held = fingerprint_in(path);
    const bool alike = (held.empty() ? noted_fingerprint(path) : held) == fingerprint;
    // What was noted of a file is lost when somebody cuts it off.
    if (!alike && !held.empty()) return OutputState::kStale;
    if (!is_whole_image(path, abort)) return OutputState::kBroken;
    return alike ? OutputState::kWhole : OutputState::kStale;
} catch (const Interrupted&) {
    throw;
} catch (const Error&) {
    return OutputState::kBroken;
}

}  // namespace veloxa
