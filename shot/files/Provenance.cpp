#include "shot/files/Provenance.h"

namespace veloxa {

namespace {

constexpr const char* kInputs = "veloxa:inputs";
constexpr const char* kSettings = "veloxa:settings";
constexpr const char* kHistory = "Exif:ImageHistory";
constexpr const char* kDescription = "ImageDescription";
constexpr std::string_view kOpening = "made by veloxa ";

}  // namespace

void Provenance::note(OIIO::ImageSpec& header, std::string_view format) const {
    for (const char* name : {kInputs, kSettings}) header.erase_attribute(name);
    for (const char* name : {kHistory, kDescription}) {
        if (std::string(header.get_string_attribute(name)).starts_with(kOpening))
            header.erase_attribute(name);
    }
    if (program.empty()) return;
    header.attribute("Software", program);
    const std::string all = "made by " + program + "\n" + inputs + settings;
    if (format == "openexr" || format == "png") {
        header.attribute(kInputs, inputs);
        header.attribute(kSettings, settings);
    } else if (format == "tiff") {
        if (!header.find_attribute(kDescription)) header.attribute(kDescription, all);
    } else if (format == "jpeg" || format == "heif") {
        header.attribute(kHistory, all);
    }
}

}  // namespace veloxa
