// Fingerprints of pictures whose format has no place for them: a hidden file beside each, .NAME.veloxa.
//
// It names the picture's size and time of change too, so that one that took the picture's place later has
// none.
#pragma once

#include <string>

namespace veloxa {

std::string status_file(const std::string& picture);

// Of a picture that has its name. Throws Error.
void note_fingerprint(const std::string& picture, const std::string& fingerprint);
// The fingerprint that was noted of the picture as it is; empty without one.
std::string noted_fingerprint(const std::string& picture);
// Removes the note, where there is one.
void forget_fingerprint(const std::string& picture);

}  // namespace veloxa
