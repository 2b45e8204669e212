#include "shot/files/Provenance.h"

namespace veloxa {

namespace {

constexpr const char* kInputs = "veloxa:inputs";
constexpr const char* kSettings = "veloxa:settings";
constexpr const char* kFingerprint = "veloxa:fingerprint";
constexpr const char* kHistory = "Exif:ImageHistory";
constexpr const char* kDescription = "ImageDescription";
constexpr std::string_view kOpening = "made by veloxa ";

bool has_free_metadata(std::string_view format) {
    return format == "openexr" || format == "png";
}

}  // namespace

bool Provenance::notes_fingerprint(std::string_view format) const {
    return !program.empty() && has_free_metadata(format);
}

std::string Provenance::fingerprint_in(const Header& header) {
    return header.get_string_attribute(kFingerprint);
}

void Provenance::note(Header& header, std::string_view format) const {
    for (const char* name : {kInputs, kSettings, kFingerprint}) header.erase_attribute(name);
    for (const char* name : {kHistory, kDescription}) {
        if (std::string(header.get_string_attribute(name)).starts_with(kOpening))
            header.erase_attribute(name);
    }
    if (program.empty()) return;
    header.attribute("Software", program);
    const std::string all = "made by " + program + "\n" + inputs + settings;
    if (has_free_metadata(format)) {
        header.attribute(kInputs, inputs);
        header.attribute(kSettings, settings);
        if (!fingerprint.empty()) header.attribute(kFingerprint, fingerprint);
    } else if (format == "tiff") {
        if (!header.find_attribute(kDescription)) header.attribute(kDescription, all);
    } else if (format == "jpeg" || format == "heif") {
        header.attribute(kHistory, all);
    }
}

}  // namespace veloxa
