#include "images/Identity.h"

#include <atomic>
#include <cstdint>

namespace veloxa::ofx {

using namespace Zo::Image;

Hash fresh_identity() {
    static std::atomic<std::uint64_t> last{0};
    Hash hash;
    hash.append(++last);
    hash.append(std::string_view("fresh"));
    return hash;
}

// The time and the field too, as not all hosts change the identifier with them; and which part of the frame
// is there, as what was computed from one part does not hold for another.
Hash identity_of(const Image& image, OfxTime time, const RenderScale& scale, std::string_view field) {
    if (!image.empty() && image.identifier().empty()) return fresh_identity();
    Hash hash;
    hash.append(std::string_view(image.identifier()));
    hash.append(field);
    hash.append(time);
    for (const double v : scale) hash.append(v);
    const PixelView& view = image.view();
    for (const int v : {view.bounds.x, view.bounds.y, view.bounds.r, view.bounds.t, view.components,
                        static_cast<int>(view.depth)}) {
        hash.append(v);
    }
    return hash;
}

Hash identity_of(const Values& values) {
    Hash hash;
    for (const Value& value : values) {
        for (const double v : value.numbers) hash.append(v);
        hash.append(std::string_view(value.text));
    }
    return hash;
}

}  // namespace veloxa::ofx
