// Reading of image files; see ImageFile.h.
#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>
#include <optional>
#include <type_traits>
#include <vector>

#include "shot/Errors.h"
#include "shot/files/FileReader.h"
#include "shot/files/FileRows.h"
#include "shot/files/FrameRate.h"
#include "shot/files/ImageFile.h"
#include "shot/files/PictureParts.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

// Windows beyond this are taken for a damaged header.
constexpr int kLargestCoordinate = 1 << 20;

Info info_of(const Header& spec, const std::string& path) {
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

// DPX keeps its frame rate under names of its own; give it the common one.
void name_frame_rate(Header& spec) {
    if (spec.find_attribute("FramesPerSecond")) return;
    const float film = spec.get_float_attribute("dpx:FrameRate");
    const float rate = film > 0.0f ? film : spec.get_float_attribute("dpx:TemporalFrameRate");
    if (!(rate > 0.0f && rate < 1000.0f)) return;
    spec.attribute("FramesPerSecond", OIIO::TypeRational, rate_fraction(rate).data());
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

// Calls take(row, samples of the span as floats) for every row.
template <class Take>
void each_row(FileReader& reader, const Span& span, const Take& take) {
    with_sample_of(reader.stored_as(span), [&]<class Sample>(Sample) {
        if constexpr (std::is_same_v<Sample, float>) {
            reader.each_row<float>(span, take);
        } else {
            std::vector<float> floats(
                static_cast<std::size_t>(reader.spec().width * (span.last - span.first)));
            reader.each_row<Sample>(span, [&](int row, const Sample* samples) {
                for (std::size_t n = 0; n < floats.size(); ++n) floats[n] = to_float(samples[n]);
                take(row, floats.data());
            });
        }
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

// Opens a file and calls work(reader). Throws Error too where there is no room for its pixels.
template <class Work>
auto with_reader(const std::string& path, const AbortFlag* abort, const Work& work) try {
    FileReader reader(path, abort);
    return work(reader);
} catch (const std::bad_alloc&) {
    throw Error(path, "needs more memory than there is");
} catch (const std::length_error&) {
    throw Error(path, "needs more memory than there is");
}

Image read_chosen(const std::string& path, const PictureChoice& choice, bool matte, const AbortFlag* abort) {
    return with_reader(path, abort, [&](FileReader& reader) {
        const Selection selection = select_picture(path, reader.spec(), choice, matte);
        if (!reader.go_to(selection.part)) throw Error(path, "is damaged or not whole");
        return read_channels(reader, path, selection.sources);
    });
}

}  // namespace

Image read_image(const std::string& path, const PictureChoice& choice, const AbortFlag* abort) {
    if (choice.invert) refuse_invert(path);
    return read_chosen(path, choice, false, abort);
}

Image read_matte(const std::string& path, const PictureChoice& choice, const AbortFlag* abort) {
    Image image = read_chosen(path, choice, true, abort);
    if (choice.invert) {
        const Plane& alpha = image.plane(kAlpha);
        const std::size_t pixels = image.width() * image.height();
        std::transform(alpha.get(), alpha.get() + pixels, alpha.get(), [](float v) { return 1.0f - v; });
    }
    return image;
}

void refuse_invert(const std::string& path) {
    throw UsageError(path + "#invert: only the matte of an input that is a matte can be inverted");
}

std::string own_alpha(const Header& header, const PictureChoice& choice) {
    PictureChoice within = choice;
    within.part.clear();
    const int alpha = select_picture({}, std::vector{header}, within, false).sources[3];
    return alpha >= 0 && header.nchannels > 1 ? std::string(header.channel_name(alpha)) : "";
}

void check_choice(const std::string& path, const PictureChoice& choice, bool matte) {
    std::optional<FileReader> reader;
    try {
        reader.emplace(path, nullptr);
    } catch (const Error&) {
        return;  // whoever reads it tells of that
    }
    select_picture(path, reader->spec(), choice, matte);
}

void warn_of_parts(const std::string& path, const PictureChoice& choice, bool matte, const Caller& caller) {
    const std::string besides = select_picture(path, parts_of(path), choice, matte).besides;
    if (!besides.empty()) caller.warn(path + ": warning: " + besides);
}

bool is_whole_image(const std::string& path, const AbortFlag* abort) try {
    bool there = true;
    for (int part = 0; there; ++part) {
        with_reader(path, abort, [&](FileReader& reader) {
            there = reader.go_to(part);
            if (!there && part > 0) return;
            info_of(reader.spec(), path);
            reader.each_row_as({}, {0, reader.spec().nchannels}, [](int, const std::byte*) {});
        });
    }
    return true;
} catch (const Error&) {
    return false;
}

std::string fingerprint_in(const std::string& path) {
    return with_reader(path, nullptr,
                       [](FileReader& reader) { return Provenance::fingerprint_in(reader.spec()); });
}

}  // namespace veloxa
