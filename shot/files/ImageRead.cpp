// Reading of image files; see ImageFile.h.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <new>
#include <vector>

#include "shot/Errors.h"
#include "shot/files/FileReader.h"
#include "shot/files/ImageFile.h"
#include "shot/image/HalfFloat.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

// Windows beyond this are taken for a damaged header.
constexpr int kLargestCoordinate = 1 << 20;

// Which channel of the file feeds each of red, green, blue and alpha; -1 for none.
using Sources = std::array<int, 4>;

bool same_letter(const std::string& name, char letter) {
    return name.size() == 1 && std::toupper(static_cast<unsigned char>(name[0])) == letter;
}

Sources find_channels(const OIIO::ImageSpec& spec) {
    Sources from{-1, -1, -1, -1};
    for (int n = spec.nchannels - 1; n >= 0; --n) {
        for (std::size_t c = 0; c < from.size(); ++c) {
            if (same_letter(spec.channel_name(n), "RGBA"[c])) from[c] = n;
        }
    }
    const bool named = from[0] >= 0 || from[1] >= 0 || from[2] >= 0;
    if (from[3] < 0) from[3] = spec.alpha_channel;
    std::vector<int> others;
    for (int n = 0; n < spec.nchannels; ++n) {
        if (n != from[3]) others.push_back(n);
    }
    if (others.size() == 1) {
        from[0] = from[1] = from[2] = others[0];
    } else if (!named) {
        for (std::size_t c = 0; c < from.size() && c < others.size(); ++c) {
            if (from[c] < 0) from[c] = others[c];
        }
    }
    return from;
}

Info info_of(const OIIO::ImageSpec& spec, const std::string& path) {
    for (const int v : {spec.x, spec.y, spec.full_x, spec.full_y}) {
        if (std::abs(static_cast<double>(v)) > kLargestCoordinate)
            throw Error(path, "has impossible windows");
    }
    for (const int v : {spec.width, spec.height, spec.full_width, spec.full_height}) {
        if (v <= 0 || v > kLargestCoordinate) throw Error(path, "has impossible windows");
    }
    const int bottom = spec.full_y + spec.full_height;
    const int left = spec.full_x;
    Info info;
    info.box = {spec.x - left, bottom - (spec.y + spec.height), spec.x + spec.width - left, bottom - spec.y};
    info.format.box = {0, 0, spec.full_width, spec.full_height};
    info.format.pixel_aspect = spec.get_float_attribute("PixelAspectRatio", 1.0f);
    return info;
}

// DPX keeps its frame rate under names of its own; give it the common one, as a fraction: 23.976 stands for
// 24000/1001.
void name_frame_rate(OIIO::ImageSpec& spec) {
    if (spec.find_attribute("FramesPerSecond")) return;
    const float film = spec.get_float_attribute("dpx:FrameRate");
    const float rate = film > 0.0f ? film : spec.get_float_attribute("dpx:TemporalFrameRate");
    if (!(rate > 0.0f && rate < 1000.0f)) return;
    const float whole = std::round(rate);
    std::array<int, 2> fraction{static_cast<int>(std::round(rate * 1000.0f)), 1000};
    if (std::abs(rate - whole) < 0.001f) fraction = {static_cast<int>(whole), 1};
    if (std::abs(rate - whole / 1.001f) < 0.001f) fraction = {static_cast<int>(whole) * 1000, 1001};
    spec.attribute("FramesPerSecond", OIIO::TypeRational, fraction.data());
}

// Which of red, green, blue and alpha is the first that the file's channel feeds; the others share its plane.
std::size_t maker_of(const Sources& from, std::size_t c) {
    return static_cast<std::size_t>(std::find(from.begin(), from.end(), from[c]) - from.begin());
}

using Span = FileReader::Span;

// The file's channels that hold all sources.
Span span_of(const Sources& from) {
    Span span{std::numeric_limits<int>::max(), 0};
    for (const int n : from) {
        if (n < 0) continue;
        span = {std::min(span.first, n), std::max(span.last, n + 1)};
    }
    return span;
}

// Calls take(row, samples of the span as floats) for every row. Halves are read as they are: the library
// would convert them sample by sample.
template <class Take>
void each_row(FileReader& reader, const Span& span, const Take& take) {
    if (!reader.is_half(span)) return reader.each_row<float>(span, take);
    std::vector<float> floats(static_cast<std::size_t>(reader.spec().width * (span.last - span.first)));
    reader.each_row<Half>(span, [&](int row, const Half* samples) {
        from_half(samples, floats.data(), floats.size());
        take(row, floats.data());
    });
}

Image read_channels(FileReader& reader, const std::string& path, const Sources& from) {
    Image image;
    image.info = info_of(reader.spec(), path);
    image.header = reader.spec();
    name_frame_rate(image.header);
    for (std::size_t c = 0; c < from.size(); ++c) {
        if (from[c] < 0) continue;
        image.info.channels += static_cast<Channel>(kRed + static_cast<int>(c));
        const std::size_t maker = maker_of(from, c);
        image.planes[c] = maker < c ? image.planes[maker] : make_plane(image.width() * image.height());
    }
    const Span span = span_of(from);
    const auto stride = static_cast<std::size_t>(span.last - span.first);
    const std::size_t width = image.width();
    each_row(reader, span, [&](int row, const float* pixels) {
        const int y = image.info.box.t - 1 - row;
        for (std::size_t c = 0; c < from.size(); ++c) {
            if (from[c] < 0 || maker_of(from, c) != c) continue;
            const auto channel = static_cast<Channel>(kRed + static_cast<int>(c));
            const float* const samples = pixels + (from[c] - span.first);
            float* const line = image.line(channel, y);
            for (std::size_t x = 0; x < width; ++x) line[x] = samples[x * stride];
        }
    });
    return image;
}

// Opens a file and calls work(reader, sources of all its channels).
template <class Work>
auto with_reader(const std::string& path, const AbortFlag* abort, const Work& work) try {
    FileReader reader(path, abort);
    return work(reader, find_channels(reader.spec()));
} catch (const std::bad_alloc&) {
    throw Error(path, "needs more memory than there is");
} catch (const std::length_error&) {
    throw Error(path, "needs more memory than there is");
}

// A film has many; what is told of is that there are others.
constexpr std::size_t kCounted = 100;
constexpr std::size_t kNamed = 8;

// Their names, or numbers for those without.
std::vector<std::string> part_names(const std::string& path) {
    const Hush hush(path);
    std::vector<std::string> names;
    const auto input = OIIO::ImageInput::open(path);
    while (input && names.size() < kCounted && input->seek_subimage(static_cast<int>(names.size()), 0)) {
        const std::string name = input->spec().get_string_attribute("oiio:subimagename");
        names.push_back(name.empty() ? std::to_string(names.size()) : name);
    }
    OIIO::geterror();  // there is always an end
    return names;
}

}  // namespace

Image read_image(const std::string& path, const AbortFlag* abort) {
    return with_reader(path, abort, [&](FileReader& reader, const Sources& from) {
        return read_channels(reader, path, from);
    });
}

Image read_matte(const std::string& path, const AbortFlag* abort) {
    return with_reader(path, abort, [&](FileReader& reader, const Sources& from) {
        return read_channels(reader, path, {-1, -1, -1, from[3] >= 0 ? from[3] : 0});
    });
}

std::string own_alpha(const OIIO::ImageSpec& header) {
    const int alpha = find_channels(header)[3];
    return alpha >= 0 && header.nchannels > 1 ? std::string(header.channel_name(alpha)) : "";
}

void warn_of_parts(const std::string& path, const Caller& caller) {
    const std::vector<std::string> names = part_names(path);
    if (names.size() < 2) return;
    std::string list;
    for (std::size_t n = 0; n < std::min(names.size(), kNamed); ++n) list += (n > 0 ? ", " : "") + names[n];
    if (names.size() > kNamed) list += ", ...";
    const std::string count = std::to_string(names.size()) + (names.size() == kCounted ? " or more" : "");
    caller.warn(path + ": warning: holds " + count + " parts (" + list + "); only the first is used, " +
                names.front());
}

bool is_whole_image(const std::string& path, const AbortFlag* abort) try {
    with_reader(path, abort, [&](FileReader& reader, const Sources& from) {
        info_of(reader.spec(), path);
        each_row(reader, span_of(from), [](int, const float*) {});
    });
    return true;
} catch (const Error&) {
    return false;
}

}  // namespace veloxa
