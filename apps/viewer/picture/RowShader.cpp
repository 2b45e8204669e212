#include "picture/RowShader.h"

#include <algorithm>
#include <cmath>

#include "ZoImage/StatusColour.h"

namespace veloxa::viewer {

using namespace Zo::Image;

namespace {

constexpr std::array<float, 3> kRec709{0.2126f, 0.7152f, 0.0722f};
constexpr float kLargest = 1e30f;  // that matrices make no NaN of
constexpr std::uint32_t kOpaque = 0xff000000U;

std::uint32_t pixel(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    return kOpaque | red << 16U | green << 8U | blue;
}

// Both axes of the checker, at the area's own pixels.
bool odd_square(int place) {
    return (place / kCheckerSide) % 2 != 0;
}

std::uint32_t colour_of_mark(std::uint32_t marks) {
    if (marks & kIsNan) return kFalseNan;
    if (marks & kIsInfinite) return kFalseInfinite;
    return marks & kIsAbove ? kFalseAbove : kFalseBelow;
}

Channel channel_of(Channels shown) {
    switch (shown) {
        case Channels::kRed:
            return kRed;
        case Channels::kGreen:
            return kGreen;
        case Channels::kBlue:
            return kBlue;
        default:
            return kAlpha;
    }
}

std::vector<LevelTable> tables_for(const View& view, const DisplayTransform& display) {
    std::vector<LevelTable> tables;
    const auto add = [&](const LevelCurve& curve) {
        tables.emplace_back(after(view.gain, view.gamma, curve));
    };
    if (view.status) return tables;
    if (view.channels == Channels::kColour) {
        if (const auto* const curves = display.channels()) {
            for (const LevelCurve& curve : *curves) add(curve);
        }
    } else if (view.channels == Channels::kAlpha) {
        add(DisplayTransform::plain());
    } else if (const LevelCurve* const curve = display.grey()) {
        add(*curve);
    }
    return tables;
}

}  // namespace

RowShader::RowShader(const ShownPicture& picture, const View& view, const DisplayTransform& display,
                     const Geometry& geometry)
    : view_(view),
      display_(display),
      tone_(view.gain, view.gamma),
      sampler_(picture, geometry),
      tables_(tables_for(view, display)),
      width_(static_cast<std::size_t>(geometry.width)) {
    if (view.behind == Behind::kPicture && view.behind_picture) {
        behind_.emplace(ShownPicture{view.behind_picture, 1.0, {}}, geometry);
    }
    for (std::size_t n = 0; n < checkers_.size() && view.behind == Behind::kChecker; ++n) {
        for (int x = 0; x < geometry.width; ++x) {
            checkers_[n].push_back(kCheckerGreys[odd_square(x) ? 1 - n : n]);
        }
    }
}

bool RowShader::same(int row, int other) const {
    return sampler_.same(row, other) && (!behind_ || behind_->same(row, other)) &&
           odd_square(row) == odd_square(other);
}

void RowShader::shade(int row, Scratch& scratch, std::uint32_t* out) const {
    const SampledAxis& columns = sampler_.columns();
    const bool shown = sampler_.rows().count[static_cast<std::size_t>(row)] != 0;
    const bool framed = sampler_.rows().frame[static_cast<std::size_t>(row)] != 0;
    if (!shown && !framed) {
        std::fill_n(out, width_, kSurround);
        return;
    }
    for (auto* const planes : {&scratch.planes, &scratch.behind}) {
        for (std::vector<float>& plane : *planes) plane.resize(width_);
    }
    if (view_.status) {
        status(row, scratch, out);
    } else if (view_.channels == Channels::kColour) {
        colour(row, scratch, out);
    } else {
        grey(row, scratch, out);
    }
    if (view_.false_colours && !view_.status) mark(row, scratch, out);
    for (std::size_t x = 0; x < width_; ++x) {
        const bool pixels = shown && columns.count[x] != 0;
        if (!pixels && !(framed && columns.frame[x] != 0)) out[x] = kSurround;
    }
}

void RowShader::status(int row, Scratch& scratch, std::uint32_t* out) const {
    const float* const alpha =
        sampler_.read(kAlpha, row, 0.0f, scratch.sampler, scratch.planes.back().data());
    for (std::size_t x = 0; x < width_; ++x) out[x] = status_colour(alpha[x]);
}

void RowShader::colour(int row, Scratch& scratch, std::uint32_t* out) const {
    Planes planes{};
    for (const Channel c : kMaskRgb) {
        const auto n = static_cast<std::size_t>(c - kRed);
        planes[n] = sampler_.read(c, row, 0.0f, scratch.sampler, scratch.planes[n].data());
    }
    const float* alpha = nullptr;
    if (sampler_.has(kAlpha) && (view_.behind != Behind::kNothing || view_.overlay)) {
        alpha = sampler_.read(kAlpha, row, 0.0f, scratch.sampler, scratch.planes.back().data());
    }
    if (alpha) put_behind(row, alpha, planes, scratch);
    show(planes, scratch, out);
    if (alpha && view_.overlay) overlay(alpha, out);
}

void RowShader::put_behind(int row, const float* alpha, Planes& planes, Scratch& scratch) const {
    if (view_.behind == Behind::kNothing || view_.behind == Behind::kBlack) return;
    if (view_.behind == Behind::kPicture && !behind_) return;
    for (std::size_t c = 0; c < planes.size(); ++c) {
        float* const plane = scratch.behind[c].data();
        const float* behind = plane;
        if (behind_) {
            behind = behind_->read(static_cast<Channel>(kRed + c), row, 0.0f, scratch.sampler, plane);
        } else if (view_.behind == Behind::kColour) {
            std::fill_n(plane, width_, view_.behind_colour[c]);
        } else {
            behind = checkers_[odd_square(row) ? 1 : 0].data();
        }
        for (std::size_t x = 0; x < width_; ++x) plane[x] = planes[c][x] + (1.0f - alpha[x]) * behind[x];
        planes[c] = plane;
    }
}

void RowShader::show(const Planes& planes, Scratch& scratch, std::uint32_t* out) const {
    if (tables_.size() == planes.size()) {
        LevelTable::colour({&tables_[0], &tables_[1], &tables_[2]}, planes, width_, out);
        return;
    }
    std::vector<float>& rgba = scratch.rgba;
    rgba.resize(4 * width_);
    for (std::size_t x = 0; x < width_; ++x) {
        for (std::size_t c = 0; c < planes.size(); ++c) {
            rgba[4 * x + c] = std::clamp(tone_(planes[c][x]), -kLargest, kLargest);
        }
        rgba[4 * x + 3] = 1.0f;
    }
    display_.apply(rgba.data(), width_);
    for (std::size_t x = 0; x < width_; ++x) {
        const float* const v = rgba.data() + 4 * x;
        out[x] = pixel(level_of(v[0]), level_of(v[1]), level_of(v[2]));
    }
}

void RowShader::grey(int row, Scratch& scratch, std::uint32_t* out) const {
    float* const plane = scratch.planes[0].data();
    const float* values = plane;
    if (view_.channels != Channels::kLuminance) {
        values = sampler_.read(channel_of(view_.channels), row, 0.0f, scratch.sampler, plane);
    } else {
        Planes planes{};
        for (std::size_t c = 0; c < planes.size(); ++c) {
            planes[c] = sampler_.read(static_cast<Channel>(kRed + c), row, 0.0f, scratch.sampler,
                                      scratch.planes[c].data());
        }
        for (std::size_t x = 0; x < width_; ++x) {
            plane[x] = kRec709[0] * planes[0][x] + kRec709[1] * planes[1][x] + kRec709[2] * planes[2][x];
        }
    }
    if (!tables_.empty()) {
        tables_.front().grey(values, width_, out);
        return;
    }
    show({values, values, values}, scratch, out);
    for (std::size_t x = 0; x < width_; ++x) {
        const std::uint32_t green = out[x] >> 8U & 0xffU;
        out[x] = pixel(green, green, green);
    }
}

void RowShader::overlay(const float* alpha, std::uint32_t* out) const {
    std::array<float, 4> tint{};
    for (std::size_t c = 0; c < tint.size(); ++c) tint[c] = std::clamp(view_.overlay_colour[c], 0.0f, 1.0f);
    for (std::size_t x = 0; x < width_; ++x) {
        const float solid = alpha[x] > 0.0f ? std::min(alpha[x], 1.0f) : 0.0f;  // NaN is as 0
        const float share = solid * tint[3];
        const auto mixed = [&](std::size_t c, unsigned shift) {
            const auto level = static_cast<float>(static_cast<std::int32_t>(out[x] >> shift & 0xffU));
            const float to = level + (tint[c] * 255.0f - level) * share + 0.5f;
            return static_cast<std::uint32_t>(static_cast<std::int32_t>(to));
        };
        out[x] = pixel(mixed(0, 16U), mixed(1, 8U), mixed(2, 0U));
    }
}

std::vector<Channel> RowShader::channels() const {
    std::vector<Channel> list;
    if (view_.channels == Channels::kColour || view_.channels == Channels::kLuminance) {
        list = {kRed, kGreen, kBlue};
    } else {
        list = {channel_of(view_.channels)};
    }
    if (view_.channels == Channels::kColour && view_.overlay) list.push_back(kAlpha);
    return list;
}

void RowShader::mark(int row, Scratch& scratch, std::uint32_t* out) const {
    scratch.marks.assign(width_, kNoMark);
    for (const Channel c : channels()) sampler_.mark(c, row, scratch.sampler, scratch.marks.data());
    for (std::size_t x = 0; x < width_; ++x) {
        if (scratch.marks[x] != kNoMark) out[x] = colour_of_mark(scratch.marks[x]);
    }
}

}  // namespace veloxa::viewer
