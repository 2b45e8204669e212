#include "picture/Shading.h"

#include <algorithm>
#include <cmath>
#include <future>
#include <optional>
#include <utility>

#include "picture/RowShader.h"

namespace veloxa::viewer {

using namespace Zo::Image;

Shaded shade(const ShownPicture& picture, const View& view, const DisplayTransform& display,
             const Geometry& geometry, int threads) {
    Shaded shaded{std::max(geometry.width, 0), std::max(geometry.height, 0), {}};
    shaded.pixels.resize(static_cast<std::size_t>(shaded.width) * static_cast<std::size_t>(shaded.height));
    if (shaded.pixels.empty() || !picture.image) {
        std::ranges::fill(shaded.pixels, kSurround);
        return shaded;
    }
    const RowShader shader(picture, view, display, geometry);
    const auto work = [&](int from, int to) {
        RowShader::Scratch scratch;
        const auto width = static_cast<std::size_t>(shaded.width);
        for (int row = from; row < to; ++row) {
            std::uint32_t* const out = shaded.pixels.data() + static_cast<std::size_t>(row) * width;
            if (row > from && shader.same(row, row - 1)) {
                std::copy_n(out - width, width, out);
            } else {
                shader.shade(row, scratch, out);
            }
        }
    };
    const int parts = std::clamp(threads, 1, shaded.height);
    const auto start = [&](int part) {
        return static_cast<int>(static_cast<std::int64_t>(shaded.height) * part / parts);
    };
    std::vector<std::future<void>> others;
    for (int part = 1; part < parts; ++part) {
        others.push_back(std::async(std::launch::async, work, start(part), start(part + 1)));
    }
    work(0, start(1));
    for (std::future<void>& other : others) other.get();
    return shaded;
}

}  // namespace veloxa::viewer
