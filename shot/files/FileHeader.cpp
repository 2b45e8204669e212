#include "shot/files/FileHeader.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "shot/Errors.h"
#include "shot/colour/FileSpace.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

struct Compressions {
    std::string_view format;
    std::vector<std::string_view> names;   // the first where nothing else is said
    std::vector<std::string_view> levels;  // those that take a number behind a colon
    std::vector<std::string_view> approximate;
};

// What the library's writers know and write files with that read back; unknown names they take for their
// default without a word.
const std::vector<Compressions>& all_compressions() {
    static const std::vector<Compressions> all{
        {"openexr",
         {"zip", "none", "rle", "zips", "piz", "pxr24", "b44", "b44a", "dwaa", "dwab"},
         {"zip", "zips", "dwaa", "dwab"},
         {"b44", "b44a", "dwaa", "dwab"}},
        {"tiff", {"zip", "none", "lzw", "packbits"}, {"zip"}, {}},
        {"targa", {"rle", "none"}, {}, {}},
        {"png", {"zip"}, {"zip"}, {}},
        {"webp", {"webp", "lossless"}, {}, {"webp"}},
    };
    return all;
}

const Compressions* compressions_of(std::string_view format) {
    const auto& all = all_compressions();
    const auto found = std::ranges::find(all, format, &Compressions::format);
    return found == all.end() ? nullptr : &*found;
}

bool among(const std::vector<std::string_view>& names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

std::string_view name_in(std::string_view compression) {
    return compression.substr(0, compression.find(':'));
}

bool has_quality(std::string_view format) {
    return format == "jpeg" || format == "webp" || format == "heif";
}

void check_compression(const std::string& path, std::string_view format, std::string_view compression) {
    const Compressions* const known = compressions_of(format);
    if (!known) throw Error(path, "--compression: the format has no choice of compressions");
    const std::string_view name = name_in(compression);
    const std::string_view level = compression.substr(std::min(name.size(), compression.size()));
    const bool good_level =
        level.empty() || (level.size() > 1 && level.size() < 5 && among(known->levels, name) &&
                          level.find_first_not_of("0123456789", 1) == level.npos);
    if (among(known->names, name) && good_level) return;
    std::string list;
    for (const std::string_view one : known->names) {
        list += (list.empty() ? "" : ", ") + std::string(one) + (among(known->levels, one) ? "[:N]" : "");
    }
    throw Error(path, "--compression " + std::string(compression) + ": the format has " + list);
}

Depth usual_depth(std::string_view format) {
    if (format == "openexr") return Depth::HALF;
    // The library's run lengths of integers in RLA do not always read back; floats have none.
    return format == "rla" ? Depth::FLOAT : Depth::UINT16;
}

void set_compression(Header& spec, std::string_view format, const std::string& wanted) {
    const std::string before = spec.get_string_attribute("compression");
    for (const char* name : {"compression", "tiff:Compression"}) spec.erase_attribute(name);
    const Compressions* const known = compressions_of(format);
    if (known) {
        const bool kept = wanted.empty() && among(known->names, before);
        const std::string name = !wanted.empty() ? wanted : kept ? before : std::string(known->names.front());
        if (!kept) spec.erase_attribute("openexr:dwaCompressionLevel");
        const std::size_t colon = name.find(':');
        if (format == "png" && colon != name.npos) {
            spec.attribute("png:compressionLevel", std::stoi(name.substr(colon + 1)));
        }
        if (format == "tiff" && colon != name.npos) {
            spec.attribute("tiff:zipquality", std::stoi(name.substr(colon + 1)));
        }
        if (format != "png" && name != "webp") {
            spec.attribute("compression", format == "tiff" ? std::string(name_in(name)) : name);
        }
    } else if (format == "iff" && spec.nchannels == 4) {
        spec.attribute("compression", "none");  // the library's run lengths do not read back
    }
}

void set_windows(Header& spec, const FileRows& rows, std::string_view format) {
    const bool windows = format == "openexr";
    const Box& box = rows.box();
    const Box& frame = rows.frame();
    spec.full_x = windows ? spec.full_x : 0;
    spec.full_y = windows ? spec.full_y : 0;
    spec.full_width = frame.width();
    spec.full_height = frame.height();
    spec.x = spec.full_x + box.x;
    spec.y = spec.full_y + frame.t - box.t;
    spec.width = box.width();
    spec.height = box.height();
    spec.deep = false;
}

void set_channels(Header& spec, const FileRows& rows, std::string_view format) {
    if (spec.nchannels < 3) spec.erase_attribute("ICCProfile");  // a profile of grey does not fit colour
    spec.channelformats.clear();
    spec.channelnames.clear();
    spec.alpha_channel = spec.z_channel = -1;
    for (const Channel c : rows.channels()) spec.channelnames.emplace_back(1, "RGBA"[c - kRed]);
    spec.nchannels = static_cast<int>(spec.channelnames.size());
    const bool matte = rows.channels().front() == kAlpha;
    if (!matte && rows.channels().back() == kAlpha) spec.alpha_channel = spec.nchannels - 1;
    if (matte && format == "openexr") spec.alpha_channel = 0;
    if (matte && format != "openexr") spec.default_channel_names();  // grey there
}

}  // namespace

void check_options(const std::string& path, const PictureOutput& output, const WriteOptions& options) {
    const std::string_view format = output.format_name();
    if (!options.compression.empty()) check_compression(path, format, options.compression);
    if (options.quality > 0 && !has_quality(format)) {
        throw Error(path, "--quality: the format has none; JPEG, WebP and HEIF have");
    }
    if (options.tile_width > 0 && !output.supports("tiles"))
        throw Error(path, "--tiles: the format has none");
    if (options.tile_width > 0 && format == "tiff" &&
        (options.tile_width % 16 != 0 || options.tile_height % 16 != 0)) {
        throw Error(path, "--tiles: in TIFF width and height are multiples of 16");
    }
    if (options.bits > 0 && format != "dpx" && format != "tiff") {
        throw Error(path, "--depth uint" + std::to_string(options.bits) +
                              ": the format cannot hold such samples; DPX and TIFF can");
    }
}

Header header_for(Header spec, const FileRows& rows, const PictureOutput& output,
                  const WriteOptions& options) {
    const std::string_view format = output.format_name();
    set_channels(spec, rows, format);
    set_windows(spec, rows, format);
    spec.tile_width = options.tile_width;
    spec.tile_height = options.tile_height;
    spec.set_format(options.depth == Depth::UNKNOWN ? usual_depth(format) : options.depth);
    spec.erase_attribute("oiio:BitsPerSample");
    if (options.bits > 0) spec.attribute("oiio:BitsPerSample", options.bits);

    if (const float rate = spec.get_float_attribute("FramesPerSecond"); format == "dpx" && rate > 0.0f) {
        spec.attribute("dpx:FrameRate", rate);
        spec.attribute("dpx:TemporalFrameRate", rate);
    }
    tag_for_format(spec, format);
    set_compression(spec, format, options.compression);
    if (options.quality > 0) spec.attribute("CompressionQuality", options.quality);
    // Colour is stored as it comes, neither divided nor multiplied by the library.
    const bool associated = format == "openexr" || (format == "tiff" && options.alpha != Alpha::kStraight);
    if (!associated) spec.attribute("oiio:UnassociatedAlpha", 1);
    return spec;
}

void check_type(const std::string& path, const PictureOutput& output, const WriteOptions& options) {
    const Depth type = output.header().format;
    if (options.depth != Depth::UNKNOWN && type != options.depth) {
        throw Error(path, std::string("the format cannot hold ") + options.depth.c_str() +
                              " samples; it would hold " + type.c_str());
    }
}

bool keeps_samples(const PictureOutput& output) {
    const std::string_view format = output.format_name();
    for (const std::string_view approximate : {"gif", "hdr", "heif", "jpeg"}) {
        if (approximate == format) return false;
    }
    const OIIO::TypeDesc type = output.header().format;
    if (const Compressions* const known = compressions_of(format)) {
        const std::string said = output.header().get_string_attribute("compression");
        const std::string_view name = said.empty() ? known->names.front() : name_in(said);
        if (among(known->approximate, name)) return false;
        if (name == "pxr24" && type != OIIO::TypeDesc::HALF) return false;
    }
    return type == OIIO::TypeDesc::UINT8 || type == OIIO::TypeDesc::UINT16 || type == OIIO::TypeDesc::HALF ||
           type == OIIO::TypeDesc::FLOAT;
}

}  // namespace veloxa
