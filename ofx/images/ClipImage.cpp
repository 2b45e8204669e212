#include "images/ClipImage.h"

#include <algorithm>
#include <array>

#include "images/Image.h"

namespace veloxa::ofx {

using namespace Zo::Image;

void ClipImage::serve(const veloxa::ofx::Image& image, const Box& foreground, const Hash& identity) {
    outline(image.empty() ? Box{} : image.frame(), foreground, identity);
    view_ = image.view();
}

void ClipImage::outline(const Box& frame, const Box& foreground, Hash identity) {
    view_ = {};
    frame_ = frame;
    box_ = frame;
    if (role_ != Role::kPicture) {
        box_.merge(foreground);
    } else {
        Box both = frame;
        both.intersect(foreground);
        if (!both.empty()) box_ = both;
    }
    for (const int v : {box_.x, box_.y, box_.r, box_.t}) identity.append(v);
    invalidate(identity);
}

void ClipImage::_validate(bool /*for_real*/) {
    info_.box = box_;
    info_.format.box = box_;
    info_.channels = kMaskRgba;
}

void ClipImage::_request(int x, int y, int r, int t, ChannelSet /*channels*/, int /*count*/) {
    wanted_.merge({x, y, r, t});
}

int ClipImage::component(Channel c) const {
    if (view_.components == 1) return c == kAlpha ? 0 : -1;
    if (role_ == Role::kMatte && c == kAlpha && view_.components == 3) return 0;
    const int n = c - kRed;
    return n >= 0 && n < view_.components ? n : -1;
}

void ClipImage::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    if (poll_ != nullptr) poll_->poll();
    // Columns beyond these are black.
    const int from = role_ == Role::kPicture ? x : std::clamp(frame_.x, x, r);
    const int to = role_ == Role::kPicture ? r : std::clamp(frame_.r, from, r);
    const bool below_or_above = role_ != Role::kPicture && (y < frame_.y || y >= frame_.t);
    std::array<float*, 4> places{};
    float* alpha = nullptr;  // where it is a component that another channel has too
    for (const Channel c : channels) {
        const int n = kMaskRgba.has(c) ? component(c) : -1;
        if (n < 0 || view_.empty() || below_or_above || from >= to) {
            row.set_zero(c);
            continue;
        }
        float* const out = row.overwrite(c);
        std::fill(out, out + (from - x), 0.0f);
        std::fill(out + (to - x), out + (r - x), 0.0f);
        float*& place = places[static_cast<std::size_t>(n)];
        (place == nullptr ? place : alpha) = out + (from - x);
    }
    if (places != std::array<float*, 4>{}) read_row(view_, y, from, to, places);
    if (alpha != nullptr) std::copy(places[0], places[0] + (to - from), alpha);
}

}  // namespace veloxa::ofx
