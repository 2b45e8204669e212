// Reading of image files; see ImageFile.h.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <vector>

#include "Errors.h"
#include "ImageFile.h"
#include "OiioError.h"
#include "PngEnd.h"

namespace veloxa {

using namespace Zo::Image;
namespace fs = std::filesystem;

namespace {

// Enough rows at a time to keep every thread of a decoder busy, few enough to see an abort soon.
constexpr int kRowsAtOnce = 256;
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

// Pixels of one channel out of interleaved rows of the file, which count downward.
void take_channel(const float* interleaved, int stride, std::size_t width, float* line) {
    for (std::size_t x = 0; x < width; ++x) line[x] = interleaved[x * static_cast<std::size_t>(stride)];
}

class Reader {
  public:
    Reader(const std::string& path, const AbortFlag* abort) : path_(path), abort_(abort) { open(); }

    const OIIO::ImageSpec& spec() const { return input_->spec(); }
    Image read(const Sources& from);

  private:
    void open();
    void read_rows(int from_row, int to_row, int first, int last, float* into);
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

void Reader::read_rows(int from_row, int to_row, int first, int last, float* into) {
    const auto type = OIIO::TypeDesc::FLOAT;
    const bool ok = spec().tile_width > 0
                        ? input_->read_tiles(0, 0, spec().x, spec().x + spec().width, from_row, to_row, 0, 1,
                                             first, last, type, into)
                        : input_->read_scanlines(0, 0, from_row, to_row, 0, first, last, type, into);
    if (!ok || input_->has_error()) fail();
}

Image Reader::read(const Sources& from) {
    Info info = info_of(spec(), path_);
    int first = spec().nchannels;
    int last = 0;
    for (std::size_t c = 0; c < from.size(); ++c) {
        if (from[c] < 0) continue;
        info.channels += static_cast<Channel>(kRed + static_cast<int>(c));
        first = std::min(first, from[c]);
        last = std::max(last, from[c] + 1);
    }
    Image image;
    image.info = info;
    image.header = spec();
    name_frame_rate(image.header);
    std::array<int, 4> made_by{-1, -1, -1, -1};
    for (std::size_t c = 0; c < from.size(); ++c) {
        if (from[c] < 0) continue;
        const auto same = std::find(from.begin(), from.begin() + static_cast<std::ptrdiff_t>(c), from[c]);
        const auto maker = static_cast<std::size_t>(same - from.begin());
        made_by[c] = static_cast<int>(maker);
        image.planes[c] = maker < c ? image.planes[maker]
                                    : std::make_shared_for_overwrite<float[]>(image.width() * image.height());
    }

    const int step = spec().tile_height > 0
                         ? std::max(1, kRowsAtOnce / spec().tile_height) * spec().tile_height
                         : kRowsAtOnce;
    const int stride = last - first;
    const std::size_t pitch = image.width() * static_cast<std::size_t>(stride);
    const auto rows = std::make_unique_for_overwrite<float[]>(
        pitch * static_cast<std::size_t>(std::min(step, spec().height)));
    for (int done = 0; done < spec().height; done += step) {
        if (abort_ && abort_->raised()) throw Interrupted();
        const int count = std::min(step, spec().height - done);
        read_rows(spec().y + done, spec().y + done + count, first, last, rows.get());
        for (int n = 0; n < count; ++n) {
            const float* row = rows.get() + pitch * static_cast<std::size_t>(n);
            const int y = info.box.t - 1 - (done + n);
            for (std::size_t c = 0; c < from.size(); ++c) {
                if (made_by[c] != static_cast<int>(c)) continue;
                const auto channel = static_cast<Channel>(kRed + static_cast<int>(c));
                take_channel(row + (from[c] - first), stride, image.width(), image.line(channel, y));
            }
        }
    }
    if (!input_->close()) fail();
    return image;
}

Image read_file(const std::string& path, const AbortFlag* abort, bool matte) try {
    Reader reader(path, abort);
    Sources from = find_channels(reader.spec());
    if (matte) from = {-1, -1, -1, from[3] >= 0 ? from[3] : 0};
    return reader.read(from);
} catch (const std::bad_alloc&) {
    throw Error(path, "needs more memory than there is");
} catch (const std::length_error&) {
    throw Error(path, "needs more memory than there is");
}

}  // namespace

Image read_image(const std::string& path, const AbortFlag* abort) {
    return read_file(path, abort, false);
}

Image read_matte(const std::string& path, const AbortFlag* abort) {
    return read_file(path, abort, true);
}

}  // namespace veloxa
