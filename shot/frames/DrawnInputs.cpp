#include "shot/frames/DrawnInputs.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace veloxa {

using namespace Zo::Image;

void DrawnInputs::set(DrawnMattes mattes) {
    if (mattes == mattes_) return;
    mattes_ = std::move(mattes);
    drawn_ = {};
}

bool DrawnInputs::any(DrawnMatte::Kind kind) const {
    return std::ranges::any_of(mattes_, [&](const DrawnMatte& matte) { return is_drawn(matte, kind); });
}

LoadedInput DrawnInputs::over(DrawnMatte::Kind kind, const LoadedInput& under, const Format& format) {
    if (!any(kind)) return under;
    Drawn& last = drawn_[static_cast<std::size_t>(kind)];
    if (last.result.image && last.under.image == under.image && last.under.identity == under.identity &&
        last.format == format) {
        return last.result;
    }
    LoadedInput result{draw(mattes_, kind, format, under.image), under.identity};
    DrawnMattes own = mattes_;
    std::erase_if(own, [&](const DrawnMatte& matte) { return !is_drawn(matte, kind); });
    result.identity.append(std::string_view(mattes_script(own)));
    for (const int edge : {format.box.x, format.box.y, format.box.r, format.box.t}) {
        result.identity.append(std::int32_t{edge});
    }
    last = {under, result, format};
    return result;
}

}  // namespace veloxa
