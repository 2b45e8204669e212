#include "shot/files/Metadata.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace veloxa {

namespace {

bool describes_storage(std::string_view name) {
    if (name == "oiio:ColorSpace" || name == "oiio:Gamma") return false;
    if (name == "openexr:dwaCompressionLevel") return false;  // goes with the compression, which may be kept
    for (const std::string_view prefix : {"oiio:", "openexr:", "thumbnail_"}) {
        if (name.starts_with(prefix)) return true;
    }
    return name == "textureformat" || name == "planarconfig" || name == "multiView";
}

// The block that an attribute is stored in, empty for those that stand by themselves. The library shows a
// few without their block's name; the colour space becomes an Exif entry too.
std::string block_of(const std::string& name) {
    if (name == "ExposureTime" || name == "FNumber" || name == "oiio:ColorSpace") return "Exif";
    if (name == "Keywords") return "IPTC";
    if (name.starts_with("Raw profile")) return "raw profile";
    for (const char* block : {"Exif", "GPS", "IPTC", "XMP", "xmp", "ICCProfile"}) {
        if (name == block || name.starts_with(std::string(block) + ":")) return block;
    }
    return {};
}

}  // namespace

std::string keep_metadata(Header& header, Metadata kept) {
    std::vector<std::string> dropped;
    std::vector<std::string> blocks;
    for (const auto& attribute : header.extra_attribs) {
        const std::string name = attribute.name().string();
        if (describes_storage(name)) {
            dropped.push_back(name);
        } else if (kept == Metadata::kNone) {
            dropped.push_back(name);
            blocks = {"all"};
        } else if (kept == Metadata::kPlain && !block_of(name).empty()) {
            dropped.push_back(name);
            const std::string block = block_of(name);
            if (std::find(blocks.begin(), blocks.end(), block) == blocks.end()) blocks.push_back(block);
        }
    }
    for (const std::string& name : dropped) header.erase_attribute(name);
    std::string names;
    for (const std::string& block : blocks) names += (names.empty() ? "" : ", ") + block;
    return names;
}

bool fits(const Header& header, const PictureOutput& output) {
    if (output.format_name() != "jpeg") return true;
    // Everything in one block, with room for markup; profiles are cut into several.
    constexpr std::size_t kRoom = 48 * 1024;
    constexpr std::size_t kMarkup = 64;
    std::size_t bytes = 0;
    for (const auto& attribute : header.extra_attribs) {
        if (attribute.name() == "ICCProfile") continue;
        const bool text = attribute.type() == OIIO::TypeString;
        bytes += kMarkup + (text ? attribute.get_string().size() : attribute.type().size());
    }
    return bytes <= kRoom;
}

}  // namespace veloxa
