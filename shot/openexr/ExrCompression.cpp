#include "shot/openexr/ExrCompression.h"

#include <OpenEXR/ImfFloatAttribute.h>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace veloxa {

namespace {

struct Name {
    const char* name;
    Imf::Compression compression;
};
constexpr std::array kNames{
    Name{"none", Imf::NO_COMPRESSION},   Name{"rle", Imf::RLE_COMPRESSION},
    Name{"zips", Imf::ZIPS_COMPRESSION}, Name{"zip", Imf::ZIP_COMPRESSION},
    Name{"piz", Imf::PIZ_COMPRESSION},   Name{"pxr24", Imf::PXR24_COMPRESSION},
    Name{"b44", Imf::B44_COMPRESSION},   Name{"b44a", Imf::B44A_COMPRESSION},
    Name{"dwaa", Imf::DWAA_COMPRESSION}, Name{"dwab", Imf::DWAB_COMPRESSION},
};

}  // namespace

std::string exr_compression_name(Imf::Compression compression) {
    const auto* const found = std::ranges::find(kNames, compression, &Name::compression);
    return found == kNames.end() ? "" : found->name;
}

void set_exr_compression(Imf::Header& header, const Header& from) {
    const std::string asked = from.get_string_attribute("compression", "zip");
    const std::string name = asked.substr(0, asked.find(':'));
    const auto* const found = std::ranges::find_if(kNames, [&](const Name& one) { return one.name == name; });
    header.compression() = found == kNames.end() ? Imf::ZIP_COMPRESSION : found->compression;
    const int level = asked.size() > name.size() ? std::atoi(asked.c_str() + name.size() + 1) : 0;
    // Higher levels take several times as long for files that are hardly smaller.
    constexpr int kUsualLevel = 4;
    if (name.starts_with("zip"))
        header.zipCompressionLevel() = level >= 1 && level <= 9 ? level : kUsualLevel;
    if (name.starts_with("dwa") && level > 0) {
        header.insert("dwaCompressionLevel", Imf::FloatAttribute(static_cast<float>(level)));
    }
}

}  // namespace veloxa
