#include "shot/colour/ColourConversion.h"

#include <OpenImageIO/parallel.h>

#include <algorithm>
#include <array>
#include <vector>

namespace veloxa {

namespace OCIO = OCIO_NAMESPACE;
using namespace Zo::Image;

namespace {

// Planes of red, green and blue that nothing else shares.
void own_colour(Image& image) {
    const Image before = image;
    const std::size_t pixels = image.width() * image.height();
    for (const Channel c : kMaskRgb) {
        const Plane& from = before.plane(c);
        if (from && from.use_count() == 2) continue;  // the image's and its copy's
        image.plane(c) = make_plane(pixels);
        if (from) {
            std::copy_n(from.get(), pixels, image.plane(c).get());
        } else {
            std::fill_n(image.plane(c).get(), pixels, 0.0f);
        }
        image.info.channels += c;
    }
}

struct Span {
    std::array<float*, 3> colour;
    const float* alpha;  // null where it does not count
    std::size_t pixels;
};

void convert_span(const Span& span, const ColourConversion& conversion, float* rgba) {
    const auto divisor = [&span](std::size_t x) {
        const float a = span.alpha ? span.alpha[x] : 1.0f;
        return a > 0.0f && a < 1.0f ? a : 1.0f;
    };
    for (std::size_t x = 0; x < span.pixels; ++x) {
        for (std::size_t c = 0; c < 3; ++c) rgba[4 * x + c] = span.colour[c][x] / divisor(x);
        rgba[4 * x + 3] = 1.0f;
    }
    conversion.apply(rgba, span.pixels);
    for (std::size_t x = 0; x < span.pixels; ++x) {
        for (std::size_t c = 0; c < 3; ++c) span.colour[c][x] = rgba[4 * x + c] * divisor(x);
    }
}

}  // namespace

ColourConversion::ColourConversion(const OCIO::ConstProcessorRcPtr& processor) {
    if (processor->isNoOp()) return;
    cpu_ = processor->getOptimizedCPUProcessor(OCIO::OPTIMIZATION_LOSSLESS);
    if (cpu_->isNoOp()) cpu_ = nullptr;
}

void ColourConversion::apply(float* rgba, std::size_t pixels) const {
    if (!cpu_ || pixels == 0) return;
    OCIO::PackedImageDesc row(rgba, static_cast<long>(pixels), 1, 4);
    cpu_->apply(row);
}

void convert(Image& image, const ColourConversion& conversion, AlphaIs alpha) {
    if (!conversion.changes() || !(image.has(kRed) || image.has(kGreen) || image.has(kBlue))) return;
    own_colour(image);
    const bool divided = alpha == AlphaIs::kMultiplied && image.has(kAlpha);
    constexpr int kRowsAtOnce = 16;
    const auto work = [&](std::int64_t begin, std::int64_t end) {
        std::vector<float> rgba(4 * image.width());
        for (auto y = static_cast<int>(begin); y < static_cast<int>(end); ++y) {
            convert_span({{image.line(kRed, y), image.line(kGreen, y), image.line(kBlue, y)},
                          divided ? image.line(kAlpha, y) : nullptr,
                          image.width()},
                         conversion, rgba.data());
        }
    };
    OIIO::parallel_for_chunked(image.info.box.y, image.info.box.t, kRowsAtOnce, work);
}

}  // namespace veloxa
