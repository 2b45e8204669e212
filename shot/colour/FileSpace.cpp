#include "shot/colour/FileSpace.h"

#include <OpenImageIO/strutil.h>

#include <algorithm>
#include <filesystem>
#include <vector>

namespace veloxa {

using OIIO::Strutil::lower;

namespace {

constexpr const char* kSpaceTag = "veloxa:space";
constexpr const char* kFromTag = "veloxa:convertedFrom";
constexpr const char* kWhyTag = "oiio:ColourSpaceWhy";  // what begins with oiio: is not written
constexpr const char* kLibraryTag = "oiio:ColorSpace";
constexpr int kUncalibrated = 0xffff;  // Exif's word for what is not sRGB

bool among(const std::string& text, std::initializer_list<std::string_view> names) {
    return std::ranges::find(names, text) != names.end();
}

// Which format a file is, as far as that matters here.
enum class Kind { kLight, kFilm, kAny };

Kind kind_of(const std::string& file) {
    const std::string extension = lower(std::filesystem::path(file).extension().string());
    if (among(extension, {".exr", ".sxr", ".mxr", ".hdr", ".rgbe"})) return Kind::kLight;
    if (among(extension, {".dpx", ".cin"})) return Kind::kFilm;
    return Kind::kAny;
}

// By the name that a profile goes by, as "sRGB IEC61966-2.1" or "Display P3".
FileSpace space_of_profile(const std::string& type, const std::string& profile) {
    const std::string why = type + " with the profile " + profile;
    if (profile.find("sRGB") != profile.npos) return {kSrgb, why, true, true};
    if (const KnownSpace* const known = known_space(profile)) return {known->name, why, true, true};
    return {kSrgb, why, false, false};
}

FileSpace space_of_light(const Header& header, const std::string& type) {
    if (header.get_int_attribute("acesImageContainerFlag") == 1) {
        return {"ACES2065-1", type + " in an ACES container", true, true};
    }
    Chromaticities xy{};
    const OIIO::TypeDesc eight(OIIO::TypeDesc::FLOAT, static_cast<int>(xy.size()));
    if (!header.getattribute("chromaticities", eight, xy.data())) return {kLinear, type, true, false};
    const KnownSpace* const known = linear_space_of(xy);
    return {known ? known->name : kLinear,
            type + (known ? " with its chromaticities" : " with unknown chromaticities"), known != nullptr,
            known != nullptr};
}

FileSpace space_of_tag(const std::string& type, const std::string& space, const std::string& file) {
    const std::string tag = lower(space);
    const std::string as_tagged = type + ", tagged " + space;
    const Kind kind = kind_of(file);
    const bool whole = type == "uint8" || type == "uint16";
    if (among(tag, {"linear", "scene_linear", "lin_srgb", "lin_rec709"}))
        return {kLinear, as_tagged, true, false};
    if (kind == Kind::kFilm) {
        if (tag == "srgb") return {kSrgb, as_tagged, true, true};
        if (tag == "rec709") return {"Rec.709", as_tagged, true, true};
        const bool logarithmic = tag == "kodaklog";
        const std::string extension = lower(std::filesystem::path(file).extension().string());
        return {kFilmLog, logarithmic ? as_tagged : extension.substr(1) + " without a linear tag",
                logarithmic, false};
    }
    // The library reads all of these as sRGB where nothing says otherwise, as their standards do.
    const bool sure = tag == "srgb";
    if (whole) return {kSrgb, type + " without a linear tag", sure, sure};
    return {kLinear, type, false, false};
}

}  // namespace

FileSpace space_of(const Header& header, const std::string& file) {
    const std::string type = header.format.c_str();
    if (const std::string own = header.get_string_attribute(kSpaceTag); !own.empty()) {
        const std::string why = header.get_string_attribute(kWhyTag);
        return {own, why.empty() ? type + ", tagged " + own : why, true, true};
    }
    if (kind_of(file) == Kind::kLight) return space_of_light(header, type);
    if (const std::string profile = header.get_string_attribute("ICCProfile:profile_description");
        !profile.empty()) {
        return space_of_profile(type, profile);
    }
    FileSpace space = space_of_tag(type, header.get_string_attribute(kLibraryTag), file);
    // A profile without a name, or Exif, may say that it is not what the library takes it for.
    if (header.find_attribute("ICCProfile") || header.get_int_attribute("Exif:ColorSpace") == kUncalibrated) {
        space.sure = space.primaries = false;
    }
    return space;
}

void tag_space(Header& header, const FileSpace& space, const KnownSpace* known) {
    header.attribute(kSpaceTag, space.name);
    header.attribute(kWhyTag, space.why);
    if (!space.primaries || !known || !known->gamut) return;
    const auto& xy = known->gamut->xy;
    header.attribute("chromaticities", OIIO::TypeDesc(OIIO::TypeDesc::FLOAT, static_cast<int>(xy.size())),
                     xy.data());
}

void tag_converted(Header& header, const std::string& from, const std::string& to, const KnownSpace* known) {
    std::vector<std::string> stale{"chromaticities", "adoptedNeutral",  "acesImageContainerFlag",
                                   kLibraryTag,      "oiio:Gamma",      "Exif:ColorSpace",
                                   "dpx:Transfer",   "dpx:Colorimetric"};
    for (const auto& attribute : header.extra_attribs) {
        if (attribute.name().string().starts_with("ICCProfile")) stale.push_back(attribute.name().string());
    }
    stale.emplace_back(kFromTag);
    for (const std::string& name : stale) header.erase_attribute(name);
    if (from != to) header.attribute(kFromTag, from);
    tag_space(header, {to, from == to ? to : "converted from " + from + " to " + to, true, true}, known);
}

std::string first_space(const Header& header) {
    return header.get_string_attribute(kFromTag);
}

void tag_raw(Header& header) {
    tag_converted(header, kRaw, kRaw, nullptr);
}

void tag_for_format(Header& spec, std::string_view format) {
    const std::string name = spec.get_string_attribute(kSpaceTag);
    if (name.empty()) return;
    for (const char* stale : {kLibraryTag, "oiio:Gamma", "Exif:ColorSpace"}) spec.erase_attribute(stale);
    const KnownSpace* const known = known_space(name);
    const std::string own = known ? known->name : name;
    if (own == kRaw) return;
    if (format == "png") {
        spec.attribute(kLibraryTag, own == kLinear ? "Linear" : own);
    } else if (format == "dpx" || format == "rla") {
        if (known && known->is_linear()) spec.attribute(kLibraryTag, "Linear");
        if (own == kFilmLog) spec.attribute(kLibraryTag, "KodakLog");
        if (own == "Rec.709") spec.attribute(kLibraryTag, "Rec709");
    } else if (own == kSrgb) {
        spec.attribute(kLibraryTag, kSrgb);
    } else if (format == "tiff" || format == "jpeg") {
        spec.attribute("Exif:ColorSpace", kUncalibrated);
    }
}

}  // namespace veloxa
