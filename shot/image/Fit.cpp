#include "shot/image/Fit.h"

#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "shot/Errors.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

// Rounds outward, so that no part of a scaled data window is lost.
int scaled_down(int v, int to, int from) {
    return static_cast<int>(std::floor(static_cast<double>(v) * to / from));
}

int scaled_up(int v, int to, int from) {
    return static_cast<int>(std::ceil(static_cast<double>(v) * to / from));
}

// The box of the image and its whole frame: beyond the box its edge pixels repeat, where the library's
// filters would take the rest of the frame as black.
Box filled_box(const Image& image) {
    Box box = image.info.box;
    box.merge(image.info.format.box);
    return box;
}

// The library works on interleaved pixels, rows in the order in which they are given; ours go upward.
OIIO::ImageBuf interleaved(const Image& image, const std::vector<Channel>& channels) {
    const Box box = filled_box(image);
    const Box& data = image.info.box;
    OIIO::ImageSpec spec(box.width(), box.height(), static_cast<int>(channels.size()), OIIO::TypeDesc::FLOAT);
    spec.x = box.x;
    spec.y = box.y;
    spec.full_width = image.info.format.box.width();
    spec.full_height = image.info.format.box.height();
    OIIO::ImageBuf buffer(spec);
    auto* out = static_cast<float*>(buffer.localpixels());
    for (int y = box.y; y < box.t; ++y) {
        for (int x = box.x; x < box.r; ++x) {
            const int column = std::clamp(x, data.x, data.r - 1) - data.x;
            for (const Channel c : channels)
                *out++ = image.line(c, std::clamp(y, data.y, data.t - 1))[column];
        }
    }
    return buffer;
}

std::shared_ptr<const Image> resized(const Image& image, const Format& format, const std::string& file) {
    const Box& from = image.info.format.box;
    const Box& to = format.box;
    Info info = image.info;
    info.format = format;
    const Box box = filled_box(image);
    info.box.x = scaled_down(box.x, to.width(), from.width());
    info.box.r = scaled_up(box.r, to.width(), from.width());
    info.box.y = scaled_down(box.y, to.height(), from.height());
    info.box.t = scaled_up(box.t, to.height(), from.height());

    std::vector<Channel> channels;
    for (const Channel c : info.channels) channels.push_back(c);
    const OIIO::ImageBuf source = interleaved(image, channels);
    OIIO::ImageSpec spec(info.box.width(), info.box.height(), source.nchannels(), OIIO::TypeDesc::FLOAT);
    spec.x = info.box.x;
    spec.y = info.box.y;
    spec.full_width = to.width();
    spec.full_height = to.height();
    OIIO::ImageBuf scaled(spec);
    if (!OIIO::ImageBufAlgo::resize(scaled, source)) throw Error(file, scaled.geterror());

    auto result = std::make_shared<Image>(info);
    result->header = image.header;
    const auto* pixels = static_cast<const float*>(scaled.localpixels());
    for (std::size_t n = 0; n < channels.size(); ++n) {
        float* plane = result->plane(channels[n]).get();
        const std::size_t count = result->width() * result->height();
        for (std::size_t i = 0; i < count; ++i) plane[i] = pixels[i * channels.size() + n];
    }
    return result;
}

// Shares the pixels; only their place changes.
std::shared_ptr<const Image> centred(const Image& image, const Format& format) {
    auto result = std::make_shared<Image>(image);
    const Box& from = image.info.format.box;
    const int dx = (format.box.width() - from.width()) / 2;
    const int dy = (format.box.height() - from.height()) / 2;
    Box& box = result->info.box;
    box = {box.x + dx, box.y + dy, box.r + dx, box.t + dy};
    result->info.format = format;
    return result;
}

}  // namespace

std::optional<Fit> fit_named(std::string_view name) {
    if (name == "resize") return Fit::kResize;
    if (name == "crop") return Fit::kCrop;
    if (name == "none") return Fit::kNone;
    return std::nullopt;
}

std::shared_ptr<const Image> fitted(std::shared_ptr<const Image> image, const Format& format, Fit fit,
                                    const std::string& file) {
    const Box& size = image->info.format.box;
    if (size == format.box) return image;
    switch (fit) {
        case Fit::kResize:
            return resized(*image, format, file);
        case Fit::kCrop:
            return centred(*image, format);
        case Fit::kNone:
            return image;
        case Fit::kRefuse:
            break;
    }
    throw Error(file, "is " + size_text(size) + ", but the foreground is " + size_text(format.box) +
                          "; choose --fit resize, crop or none");
}

}  // namespace veloxa
