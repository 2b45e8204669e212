// Writing of image files; see ImageFile.h.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "AtomicFile.h"
#include "CheckedFile.h"
#include "Errors.h"
#include "HalfFloat.h"
#include "ImageFile.h"
#include "OiioError.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

// Attributes that describe how the input was stored, not what it shows.
bool describes_storage(std::string_view name) {
    if (name == "oiio:ColorSpace" || name == "oiio:Gamma") return false;
    for (const std::string_view prefix : {"oiio:", "openexr:", "thumbnail_"}) {
        if (name.starts_with(prefix)) return true;
    }
    return name == "compression" || name == "textureformat" || name == "planarconfig" || name == "multiView";
}

OIIO::TypeDesc type_of(Depth depth) {
    switch (depth) {
        case Depth::kHalf:
            return OIIO::TypeDesc::HALF;
        case Depth::kFloat:
            return OIIO::TypeDesc::FLOAT;
        case Depth::kUint8:
            return OIIO::TypeDesc::UINT8;
        case Depth::kUint16:
            return OIIO::TypeDesc::UINT16;
    }
    return OIIO::TypeDesc::HALF;
}

std::unique_ptr<OIIO::ImageOutput> writer_for(const std::string& path) {
    auto output = OIIO::ImageOutput::create(path);
    if (!output) throw Error(path, tidy_message(OIIO::geterror(), path, "cannot be written"));
    const std::string_view format = output->format_name();
    if (format == "null" || format == "term") throw Error(path, "has no extension of an image format");
    return output;
}

std::vector<Channel> written_channels(const Image& image, const OIIO::ImageOutput& output) {
    std::vector<Channel> channels;
    for (const Channel c : image.info.channels& kMaskRgba) {
        if (image.has(c) && (c != kAlpha || output.supports("alpha"))) channels.push_back(c);
    }
    return channels;
}

// The part of the image that the file holds: what the format can place, or the display window.
Box written_box(const Image& image, const OIIO::ImageOutput& output) {
    const bool windows = std::string_view(output.format_name()) == "openexr";
    return windows ? image.info.box : image.info.format.box;
}

OIIO::ImageSpec spec_for(const Image& image, const OIIO::ImageOutput& output, std::optional<Depth> depth) {
    const std::string_view format = output.format_name();
    const Box box = written_box(image, output);
    const Box& frame = image.info.format.box;

    OIIO::ImageSpec spec = image.header;
    std::vector<std::string> dropped;
    for (const auto& attribute : spec.extra_attribs) {
        if (describes_storage(attribute.name().string())) dropped.push_back(attribute.name().string());
    }
    if (spec.nchannels < 3) dropped.push_back("ICCProfile");  // a profile of grey does not fit colour
    for (const std::string& name : dropped) spec.erase_attribute(name);

    const bool windows = format == "openexr";
    spec.full_x = windows ? spec.full_x : 0;
    spec.full_y = windows ? spec.full_y : 0;
    spec.full_z = spec.z = 0;
    spec.full_width = frame.width();
    spec.full_height = frame.height();
    spec.x = spec.full_x + box.x;
    spec.y = spec.full_y + frame.t - box.t;
    spec.width = box.width();
    spec.height = box.height();
    spec.depth = spec.full_depth = 1;
    spec.tile_width = spec.tile_height = 0;
    spec.tile_depth = 1;
    spec.deep = false;

    spec.channelformats.clear();
    spec.channelnames.clear();
    spec.alpha_channel = spec.z_channel = -1;
    for (const Channel c : written_channels(image, output)) {
        if (c == kAlpha) spec.alpha_channel = static_cast<int>(spec.channelnames.size());
        spec.channelnames.emplace_back(1, "RGBA"[c - kRed]);
    }
    spec.nchannels = static_cast<int>(spec.channelnames.size());
    spec.set_format(type_of(depth.value_or(windows ? Depth::kHalf : Depth::kUint16)));

    if (const float rate = spec.get_float_attribute("FramesPerSecond"); format == "dpx" && rate > 0.0f) {
        spec.attribute("dpx:FrameRate", rate);
        spec.attribute("dpx:TemporalFrameRate", rate);
    }
    if (windows || format == "tiff") {
        spec.attribute("compression", "zip");
    } else {
        spec.attribute("oiio:UnassociatedAlpha", 1);  // store the colour as it is, do not divide by alpha
    }
    return spec;
}

// The sample type that the file really has; refuses another than the one that was asked for.
OIIO::TypeDesc opened_type(const std::string& path, const OIIO::ImageOutput& output,
                           std::optional<Depth> depth) {
    const OIIO::TypeDesc type = output.spec().format;
    if (depth && type != type_of(*depth)) {
        throw Error(path, std::string("the format cannot hold ") + type_of(*depth).c_str() +
                              " samples; it would hold " + type.c_str());
    }
    return type;
}

void convert(const float* in, float* out, std::size_t count) {
    std::copy_n(in, count, out);
}

void convert(const float* in, Half* out, std::size_t count) {
    to_half(in, out, count);
}

// NaN fails both comparisons' first side and becomes 0.
template <class T>
void convert(const float* in, T* out, std::size_t count) {
    constexpr auto kMax = static_cast<float>(std::numeric_limits<T>::max());
    for (std::size_t n = 0; n < count; ++n) {
        const float low = in[n] > 0.0f ? in[n] : 0.0f;
        const float clamped = low < 1.0f ? low : 1.0f;
        out[n] = static_cast<T>(clamped * kMax + 0.5f);
    }
}

// One interleaved row of the file from row y of the image; black where the image has no pixel. `samples` has
// room for a channel's.
template <class T>
void fill_row(const Image& image, const std::vector<Channel>& channels, const Box& box, int y, T* row,
              T* samples) {
    const Box& from = image.info.box;
    const std::size_t stride = channels.size();
    if (!from.contains(box)) std::fill_n(row, stride * static_cast<std::size_t>(box.width()), T{});
    const int x0 = std::max(box.x, from.x);
    const int x1 = std::min(box.r, from.r);
    if (y < from.y || y >= from.t || x0 >= x1) return;
    const auto count = static_cast<std::size_t>(x1 - x0);
    for (std::size_t n = 0; n < stride; ++n) {
        convert(image.line(channels[n], y) + (x0 - from.x), samples, count);
        T* out = row + static_cast<std::size_t>(x0 - box.x) * stride + n;
        for (std::size_t x = 0; x < count; ++x) out[x * stride] = samples[x];
    }
}

template <class T>
bool write_rows(OIIO::ImageOutput& output, OIIO::TypeDesc type, const Image& image, const AbortFlag* abort) {
    const Box box = written_box(image, output);
    const std::vector<Channel> channels = written_channels(image, output);
    const std::size_t pitch = channels.size() * static_cast<std::size_t>(box.width());
    const int step = std::min(rows_at_once(pitch * sizeof(T)), box.height());
    const auto rows = std::make_unique_for_overwrite<T[]>(pitch * static_cast<std::size_t>(step));
    const auto samples = std::make_unique_for_overwrite<T[]>(static_cast<std::size_t>(box.width()));
    const int top = output.spec().y;
    for (int done = 0; done < box.height(); done += step) {
        if (abort && abort->raised()) throw Interrupted();
        const int count = std::min(step, box.height() - done);
        for (int n = 0; n < count; ++n) {
            T* row = rows.get() + pitch * static_cast<std::size_t>(n);
            fill_row(image, channels, box, box.t - 1 - (done + n), row, samples.get());
        }
        if (!output.write_scanlines(top + done, top + done + count, 0, type, rows.get())) return false;
    }
    return true;
}

bool write_pixels(OIIO::ImageOutput& output, OIIO::TypeDesc type, const Image& image,
                  const AbortFlag* abort) {
    if (type == OIIO::TypeDesc::UINT8) return write_rows<std::uint8_t>(output, type, image, abort);
    if (type == OIIO::TypeDesc::UINT16) return write_rows<std::uint16_t>(output, type, image, abort);
    if (type == OIIO::TypeDesc::HALF) return write_rows<Half>(output, type, image, abort);
    return write_rows<float>(output, OIIO::TypeDesc::FLOAT, image, abort);
}

}  // namespace

void check_writable(const std::string& path, const WriteOptions& options) {
    AtomicFile::check(path, options.overwrite);
    OIIO::Filesystem::IOVecOutput memory;  // outlives the writer, which writes once more when it goes
    const auto output = writer_for(path);
    if (!options.depth || !output->supports("ioproxy")) return;
    // What a writer makes of a sample type shows only when it opens a file; this one stays in memory.
    Info info;
    info.box = info.format.box = {0, 0, 16, 16};
    info.channels = kMaskRgba;
    Image image(info);
    for (const Plane& plane : image.planes) std::fill_n(plane.get(), 16 * 16, 0.0f);
    output->set_ioproxy(&memory);
    if (!output->open(path, spec_for(image, *output, options.depth))) return;
    write_pixels(*output, output->spec().format, image, nullptr);
    output->close();
    opened_type(path, *output, options.depth);
}

void write_image(const std::string& path, const Image& image, const WriteOptions& options) {
    AtomicFile file(path, options.overwrite);
    std::unique_ptr<CheckedFile> bytes;  // outlives the writer, which writes once more when it goes
    const auto output = writer_for(path);
    if (output->supports("ioproxy")) {
        bytes = std::make_unique<CheckedFile>(file.temporary());
        if (!bytes->failure().empty()) throw Error(path, bytes->failure());
        output->set_ioproxy(bytes.get());
    }
    const auto fail = [&] {
        if (bytes && !bytes->failure().empty()) throw Error(path, bytes->failure());
        throw Error(path, tidy_message(output->geterror(), file.temporary(), "could not be written"));
    };
    if (!output->open(file.temporary(), spec_for(image, *output, options.depth))) fail();
    const OIIO::TypeDesc type = opened_type(path, *output, options.depth);
    if (!write_pixels(*output, type, image, options.abort)) fail();
    if (!output->close()) fail();
    if (bytes) {
        bytes->close();
        if (!bytes->failure().empty()) fail();
    } else if (!is_whole_image(file.temporary())) {
        throw Error(path, "could not be written whole");  // what a full disk leaves
    }
    file.commit();
}

}  // namespace veloxa
