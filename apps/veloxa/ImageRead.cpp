// Reading of image files; see ImageFile.h.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <new>
#include <type_traits>
#include <vector>

#include "Errors.h"
#include "HalfFloat.h"
#include "ImageFile.h"
#include "OiioError.h"
#include "PngEnd.h"

namespace veloxa {

using namespace Zo::Image;
namespace fs = std::filesystem;

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

// Interleaved samples of a row, as floats: themselves or through `floats`.
const float* as_floats(const float* row, std::vector<float>& /*floats*/) {
    return row;
}

const float* as_floats(const Half* row, std::vector<float>& floats) {
    from_half(row, floats.data(), floats.size());
    return floats.data();
}

// The channel at `first` out of interleaved pixels.
void take_channel(const float* interleaved, std::size_t first, std::size_t stride, std::size_t width,
                  float* line) {
    for (std::size_t x = 0; x < width; ++x) line[x] = interleaved[x * stride + first];
}

class Reader {
  public:
    Reader(const std::string& path, const AbortFlag* abort) : path_(path), abort_(abort) { open(); }

    const OIIO::ImageSpec& spec() const { return input_->spec(); }
    Image read(const Sources& from);
    // Decodes these channels and keeps nothing.
    void check(const Sources& from);

  private:
    // The file's channels that hold all sources.
    struct Span {
        int first = 0;
        int last = 0;
    };

    void open();
    bool is_half(const Span& span) const;
    void read_rows(int from_row, int to_row, const Span& span, OIIO::TypeDesc type, void* into);
    // Calls take(row of the file from its first, samples of the span) for every row.
    template <class Sample, class Take>
    void each_row(const Span& span, const Take& take);
    template <class Sample>
    void fill(Image& image, const Sources& from, const Span& span);
    static Span span_of(const Sources& from);
    [[noreturn]] void fail();

    const std::string& path_;
    const AbortFlag* abort_;
    std::unique_ptr<OIIO::ImageInput> input_;
};

void Reader::open() {
    std::error_code failed;
    const fs::file_status status = fs::status(path_, failed);
    if (!fs::exists(status)) throw Error(path_, "does not exist");
    if (fs::is_directory(status)) throw Error(path_, "is a folder");
    if (!fs::is_regular_file(status)) throw Error(path_, "is not a regular file");
    if (fs::file_size(path_, failed) == 0) throw Error(path_, "is empty");

    if (!png_is_whole(path_)) throw Error(path_, "is cut off");

    // Colour as stored, not multiplied by the alpha of formats that keep it apart.
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    input_ = OIIO::ImageInput::open(path_, &config);
    if (!input_) throw Error(path_, tidy_message(OIIO::geterror(), path_, "cannot be opened"));
    if (std::string_view(input_->format_name()) == "null") throw Error(path_, "is no image file");
    if (spec().deep) throw Error(path_, "holds deep pixels, which cannot be keyed");
    if (spec().nchannels < 1) throw Error(path_, "has no channels");
}

void Reader::fail() {
    throw Error(path_, tidy_message(input_->geterror(), path_, "is damaged or not whole"));
}

Reader::Span Reader::span_of(const Sources& from) {
    Span span{std::numeric_limits<int>::max(), 0};
    for (const int n : from) {
        if (n < 0) continue;
        span = {std::min(span.first, n), std::max(span.last, n + 1)};
    }
    return span;
}

// Halves are read as they are: the library would convert them sample by sample.
bool Reader::is_half(const Span& span) const {
    for (int n = span.first; n < span.last; ++n) {
        if (spec().channelformat(n) != OIIO::TypeDesc::HALF) return false;
    }
    return true;
}

void Reader::read_rows(int from_row, int to_row, const Span& span, OIIO::TypeDesc type, void* into) {
    const bool ok =
        spec().tile_width > 0
            ? input_->read_tiles(0, 0, spec().x, spec().x + spec().width, from_row, to_row, 0, 1, span.first,
                                 span.last, type, into)
            : input_->read_scanlines(0, 0, from_row, to_row, 0, span.first, span.last, type, into);
    if (!ok || input_->has_error()) fail();
}

template <class Sample, class Take>
void Reader::each_row(const Span& span, const Take& take) {
    const auto type = std::is_same_v<Sample, Half> ? OIIO::TypeDesc::HALF : OIIO::TypeDesc::FLOAT;
    const std::size_t pitch =
        static_cast<std::size_t>(spec().width) * static_cast<std::size_t>(span.last - span.first);
    int step = rows_at_once(pitch * sizeof(Sample));
    if (spec().tile_height > 0) step = std::max(1, step / spec().tile_height) * spec().tile_height;
    step = std::min(step, spec().height);
    const auto rows = std::make_unique_for_overwrite<Sample[]>(pitch * static_cast<std::size_t>(step));
    for (int done = 0; done < spec().height; done += step) {
        if (abort_ && abort_->raised()) throw Interrupted();
        const int count = std::min(step, spec().height - done);
        read_rows(spec().y + done, spec().y + done + count, span, type, rows.get());
        for (int n = 0; n < count; ++n) take(done + n, rows.get() + pitch * static_cast<std::size_t>(n));
    }
    if (!input_->close()) fail();
}

template <class Sample>
void Reader::fill(Image& image, const Sources& from, const Span& span) {
    const auto stride = static_cast<std::size_t>(span.last - span.first);
    std::vector<float> floats(std::is_same_v<Sample, Half> ? image.width() * stride : 0);
    each_row<Sample>(span, [&](int row, const Sample* samples) {
        const float* pixels = as_floats(samples, floats);
        const int y = image.info.box.t - 1 - row;
        for (std::size_t c = 0; c < from.size(); ++c) {
            if (from[c] < 0 || maker_of(from, c) != c) continue;
            const auto channel = static_cast<Channel>(kRed + static_cast<int>(c));
            const auto first = static_cast<std::size_t>(from[c] - span.first);
            take_channel(pixels, first, stride, image.width(), image.line(channel, y));
        }
    });
}

Image Reader::read(const Sources& from) {
    Image image;
    image.info = info_of(spec(), path_);
    image.header = spec();
    name_frame_rate(image.header);
    for (std::size_t c = 0; c < from.size(); ++c) {
        if (from[c] < 0) continue;
        image.info.channels += static_cast<Channel>(kRed + static_cast<int>(c));
        const std::size_t maker = maker_of(from, c);
        image.planes[c] = maker < c ? image.planes[maker] : make_plane(image.width() * image.height());
    }
    const Span span = span_of(from);
    if (is_half(span)) {
        fill<Half>(image, from, span);
    } else {
        fill<float>(image, from, span);
    }
    return image;
}

void Reader::check(const Sources& from) {
    info_of(spec(), path_);
    const Span span = span_of(from);
    const auto ignore = [](int, const auto*) {};
    if (is_half(span)) {
        each_row<Half>(span, ignore);
    } else {
        each_row<float>(span, ignore);
    }
}

// Opens a file and calls work(reader, sources of all its channels).
template <class Work>
auto with_reader(const std::string& path, const AbortFlag* abort, const Work& work) try {
    Reader reader(path, abort);
    return work(reader, find_channels(reader.spec()));
} catch (const std::bad_alloc&) {
    throw Error(path, "needs more memory than there is");
} catch (const std::length_error&) {
    throw Error(path, "needs more memory than there is");
}

}  // namespace

Image read_image(const std::string& path, const AbortFlag* abort) {
    return with_reader(path, abort, [](Reader& reader, const Sources& from) { return reader.read(from); });
}

Image read_matte(const std::string& path, const AbortFlag* abort) {
    return with_reader(path, abort, [](Reader& reader, const Sources& from) {
        return reader.read({-1, -1, -1, from[3] >= 0 ? from[3] : 0});
    });
}

bool is_whole_image(const std::string& path, const AbortFlag* abort) try {
    with_reader(path, abort, [](Reader& reader, const Sources& from) { reader.check(from); });
    return true;
} catch (const Interrupted&) {
    throw;
} catch (const Error&) {
    return false;
}

}  // namespace veloxa
