#include "shot/setup/Pick.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "shot/Errors.h"
#include "shot/image/Fit.h"

namespace veloxa {

using namespace Zo::Image;

Box parse_box(const std::string& option, const std::string& text) {
    std::array<int, 4> numbers{};
    const char* at = text.data();
    const char* const end = text.data() + text.size();
    bool good = true;
    for (std::size_t n = 0; n < numbers.size() && good; ++n) {
        if (n > 0) good = at != end && *at++ == ',';
        const auto [next, error] = std::from_chars(at, end, numbers[n]);
        good = good && error == std::errc();
        at = next;
    }
    const Box box{numbers[0], numbers[1], numbers[2], numbers[3]};
    if (!good || at != end) throw UsageError(option + " " + text + ": expected X,Y,R,T, as in 10,20,30,40");
    if (box.empty())
        throw UsageError(option + " " + text + ": the box is empty; R must be above X and T above Y");
    return box;
}

void check_inside(const std::string& option, const Image& image, const Box& box) {
    const Box& frame = image.info.format.box;
    if (!frame.contains(box)) {
        throw UsageError(option + ": the box reaches outside the foreground, which is " + size_text(frame));
    }
}

std::array<double, 3> mean_color(const Image& image, const Box& box) {
    check_inside("--pick", image, box);
    const Box& data = image.info.box;
    std::array<double, 3> mean{};
    for (const Channel c : kMaskRgb) {
        if (!image.has(c)) continue;
        double sum = 0.0;
        for (int y = box.y; y < box.t; ++y) {
            const float* line = image.line(c, std::clamp(y, data.y, data.t - 1));
            for (int x = box.x; x < box.r; ++x) {
                sum += static_cast<double>(line[std::clamp(x, data.x, data.r - 1) - data.x]);
            }
        }
        const double value = sum / (static_cast<double>(box.width()) * box.height());
        if (!std::isfinite(value)) throw Error("--pick: the box holds values that are not finite");
        mean[static_cast<std::size_t>(c - kRed)] = value;
    }
    return mean;
}

}  // namespace veloxa
