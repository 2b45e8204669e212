#include "shot/frames/Fit.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "shot/Errors.h"
#include "shot/files/Formats.h"

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

std::shared_ptr<const Image> resized(const Image& image, const Format& format, const std::string& file) {
    const Box& from = image.info.format.box;
    const Box& to = format.box;
    const Box& data = image.info.box;
    const Box box = filled_box(image);
    Info info = image.info;
    info.format = format;
    info.box = {scaled_down(box.x, to.width(), from.width()), scaled_down(box.y, to.height(), from.height()),
                scaled_up(box.r, to.width(), from.width()), scaled_up(box.t, to.height(), from.height())};
    auto result = std::make_shared<Image>(info);
    result->header = image.header;
    std::vector<float> filled;
    for (const Channel c : info.channels) {
        filled.clear();
        for (int y = box.y; y < box.t; ++y) {
            const float* const line = image.line(c, std::clamp(y, data.y, data.t - 1));
            for (int x = box.x; x < box.r; ++x) {
                filled.push_back(line[std::clamp(x, data.x, data.r - 1) - data.x]);
            }
        }
        const std::string fault =
            formats().resize({box, from, filled.data()}, {info.box, to, result->plane(c).get()});
        if (!fault.empty()) throw Error(file, fault);
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
