// What a picture was made by and from, for whoever finds its file later.
//
// OpenEXR and PNG have it as "veloxa:inputs" and "veloxa:settings", JPEG and HEIF as the picture's history,
// TIFF as its description where the foreground has none; the program's name goes where formats keep such
// names. OpenEXR and PNG have the fingerprint as "veloxa:fingerprint"; see shot/farm/Fingerprint.h.
#pragma once

#include <string>
#include <string_view>

#include "shot/image/Header.h"

namespace veloxa {

struct Provenance {
    std::string program;        // with its version; empty for no provenance
    std::string inputs;         // a line each: the input's name, a space, the file and what is read of it
    std::string settings;       // a script of the node
    std::string fingerprint{};  // empty for none

    // Whether a file of this format gets the fingerprint, if there is one.
    bool notes_fingerprint(std::string_view format) const;
    // That of a file's header; empty without one.
    static std::string fingerprint_in(const Header& header);

    // Adds it to what goes into a file of this format. Replaces that of the foreground, which does not hold
    // for what was made from it.
    void note(Header& header, std::string_view format) const;
};

}  // namespace veloxa
