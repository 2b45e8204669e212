#include "ofx/host/Effect.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <stdexcept>

namespace ofxtest {

namespace {

constexpr unsigned char kUnwritten = 0xA7;
constexpr int kPadding = 5;  // channels at the end of a row
constexpr auto kPlugin = PropertySet::kPluginSets;

OfxRectI shared(const OfxRectI& a, const OfxRectI& b) {
    return {std::max(a.x1, b.x1), std::max(a.y1, b.y1), std::min(a.x2, b.x2), std::min(a.y2, b.y2)};
}

// A row of the field that stands for this one; the lower field has the even rows.
int line_of(int y, const std::string& field) {
    return field == kOfxImageFieldLower ? y & ~1 : field == kOfxImageFieldUpper ? y | 1 : y;
}

}  // namespace

OfxRectI pixels_of(const OfxRectD& r, double scale, double aspect) {
    return {static_cast<int>(std::floor(r.x1 * scale / aspect)), static_cast<int>(std::floor(r.y1 * scale)),
            static_cast<int>(std::ceil(r.x2 * scale / aspect)), static_cast<int>(std::ceil(r.y2 * scale))};
}

OfxRectD canonical_of(const OfxRectI& p, double scale, double aspect) {
    return {p.x1 * aspect / scale, p.y1 / scale, p.x2 * aspect / scale, p.y2 / scale};
}

Frame::Frame(const OfxRectI& b, int channel_count)
    : box(b),
      channels(channel_count),
      values(static_cast<std::size_t>((b.x2 - b.x1) * (b.y2 - b.y1) * channel_count)) {}

float& Frame::at(int x, int y, int c) {
    return values[static_cast<std::size_t>(((y - box.y1) * (box.x2 - box.x1) + x - box.x1) * channels + c)];
}

double white_of(const std::string& depth) {
    return depth == kOfxBitDepthByte ? 255.0 : depth == kOfxBitDepthShort ? 65535.0 : 1.0;
}

int channels_of(const std::string& components) {
    return components == kOfxImageComponentRGBA ? 4 : components == kOfxImageComponentRGB ? 3 : 1;
}

std::atomic<int> Image::held{0};

Image::Image(const Clip& clip, const OfxRectI& bounds, const OfxRectI& rod, double scale)
    : is_output(clip.is_output()),
      bounds_(bounds),
      depth_(clip.props.string_at(kOfxImageEffectPropPixelDepth)),
      channels_(channels_of(clip.props.string_at(kOfxImageEffectPropComponents))),
      bytes_(depth_ == kOfxBitDepthByte    ? 1
             : depth_ == kOfxBitDepthFloat ? 4
                                           : 2) {
    const std::ptrdiff_t width = bounds.x2 - bounds.x1;
    const std::ptrdiff_t height = bounds.y2 - bounds.y1;
    const std::ptrdiff_t line = width * channels_ * bytes_;
    const std::ptrdiff_t stride = line + kPadding * bytes_;
    const bool flipped = clip.source() != nullptr && clip.source()->upside_down;
    memory_.assign(static_cast<std::size_t>(height > 0 ? (height - 1) * stride + line : 0), kUnwritten);
    first_ = memory_.data() + (flipped && height > 0 ? (height - 1) * stride : 0);
    row_bytes_ = flipped ? -stride : stride;

    add(kOfxImagePropData, {static_cast<void*>(first_)});
    add(kOfxImagePropBounds, {bounds.x1, bounds.y1, bounds.x2, bounds.y2});
    add(kOfxImagePropRegionOfDefinition, {rod.x1, rod.y1, rod.x2, rod.y2});
    add(kOfxImagePropRowBytes, {static_cast<int>(row_bytes_)});
    add(kOfxImageEffectPropPixelDepth, {depth_});
    add(kOfxImageEffectPropComponents, {clip.props.string_at(kOfxImageEffectPropComponents)});
    add(kOfxImageEffectPropRenderScale, {scale, scale});
    ++held;
}

unsigned char* Image::address(int x, int y, int c) const {
    return first_ + (y - bounds_.y1) * row_bytes_ + ((x - bounds_.x1) * channels_ + c) * bytes_;
}

void Image::store(unsigned char* at, float value) const {
    const double level = std::clamp(static_cast<double>(value), 0.0, 1.0) * white_of(depth_);
    if (depth_ == kOfxBitDepthFloat) {
        std::memcpy(at, &value, sizeof value);
    } else if (depth_ == kOfxBitDepthByte) {
        *at = static_cast<unsigned char>(std::lround(level));
    } else {
        const auto wide = static_cast<unsigned short>(std::lround(level));
        std::memcpy(at, &wide, sizeof wide);
    }
}

float Image::load(const unsigned char* at) const {
    if (depth_ == kOfxBitDepthByte) return *at;
    if (depth_ == kOfxBitDepthFloat) {
        float value = 0;
        std::memcpy(&value, at, sizeof value);
        return value;
    }
    unsigned short wide = 0;
    std::memcpy(&wide, at, sizeof wide);
    return wide;
}

void Image::fill(const Source& source, double time, const std::string& field) {
    for (int y = bounds_.y1; y < bounds_.y2; ++y) {
        for (int x = bounds_.x1; x < bounds_.x2; ++x) {
            for (int c = 0; c < channels_; ++c)
                store(address(x, y, c), source.pixel(time, channels_ == 1 ? 3 : c, x, line_of(y, field)));
        }
    }
}

void Image::collect(const Call& call, Frame& frame) const {
    const OfxRectI& w = call.window;
    std::ptrdiff_t window = 0, unwritten = 0;
    for (int y = w.y1; y < w.y2; ++y) {
        if (line_of(y, call.field) != y) continue;
        for (int x = w.x1; x < w.x2; ++x) {
            for (int c = 0; c < channels_; ++c) {
                const unsigned char* at = address(x, y, c);
                frame.at(x, y, c) = load(at);
                window += bytes_;
                unwritten += std::count(at, at + bytes_, kUnwritten);
            }
        }
    }
    const std::ptrdiff_t all = std::count(memory_.begin(), memory_.end(), kUnwritten);
    if (all - unwritten != static_cast<std::ptrdiff_t>(memory_.size()) - window)
        note_fault("writes beside the render window or its field");
}

Clip::Clip(const std::string& name) : name_(name) {
    props.add(kOfxPropLabel, {name}, kPlugin);
    props.add_list(kOfxImageEffectPropSupportedComponents, std::string(), kPlugin);
    props.add(kOfxImageClipPropOptional, {0}, kPlugin);
    props.add(kOfxImageClipPropIsMask, {0}, kPlugin);
    props.add(kOfxImageEffectPropTemporalClipAccess, {0}, kPlugin);
    props.add(kOfxImageEffectPropSupportsTiles, {1}, kPlugin);
    props.add(kOfxImageClipPropFieldExtraction, {std::string()}, kPlugin);

    props.add(kOfxImageClipPropConnected, {0});
    props.add(kOfxImageEffectPropPixelDepth, {std::string(kOfxBitDepthNone)});
    props.add(kOfxImageEffectPropComponents, {std::string(kOfxImageComponentNone)});
    props.add(kOfxImagePropPixelAspectRatio, {1.0});
}

void Clip::connect(std::shared_ptr<const Source> source) {
    source_ = std::move(source);
    static std::atomic<int> connections{0};
    connection_ = ++connections;
    const Source& s =
        source_ ? *source_ : Source{.depth = kOfxBitDepthNone, .components = kOfxImageComponentNone};
    const auto known = props.strings(kOfxImageEffectPropSupportedComponents);
    if (source_ && std::find(known.begin(), known.end(), s.components) == known.end())
        note_fault(name_ + " does not take " + s.components);
    props.put(kOfxImageClipPropConnected, {source_ ? 1 : 0});
    props.put(kOfxImageEffectPropPixelDepth, {s.depth});
    props.put(kOfxImageEffectPropComponents, {s.components});
    props.put(kOfxImagePropPixelAspectRatio, {s.aspect});
}

OfxRectD Clip::rod() const {
    if (!source_) return {};
    if (source_->endless) return {INT_MIN, INT_MIN, INT_MAX, INT_MAX};
    return canonical_of(source_->box, 1.0, aspect());
}

OfxStatus Clip::fetch(double time, const OfxRectD* region, OfxPropertySetHandle* image) const {
    const Call* call = Call::current();
    if (call == nullptr || !call->may_fetch) {
        note_fault("fetches an image at the wrong time: " + name_);
        return kOfxStatFailed;
    }
    if (!source_ || source_->fails) return kOfxStatFailed;
    const double scale = source_->scaled ? call->scale : 1.0;
    const OfxRectI rod = pixels_of(this->rod(), scale, aspect());
    OfxRectI bounds = rod;
    const auto asked = call->regions.find(name_);
    if (is_output()) {  // a little more than the window
        const OfxRectI& w = call->window;
        bounds = {w.x1 - 3, w.y1 - 2, w.x2 + 1, w.y2 + 4};
    } else if (region != nullptr) {
        bounds = shared(rod, pixels_of(*region, scale, aspect()));
    } else if (asked != call->regions.end()) {
        bounds = shared(rod, pixels_of(asked->second, scale, aspect()));
    }
    if (const int n = source_->missing; n > 0)
        bounds = {bounds.x1 + n, bounds.y1 + n, bounds.x2 - n, bounds.y2 - n};
    auto* made = new Image(*this, bounds, rod, scale);
    if (!is_output()) {
        if (source_->identified) {
            made->add(kOfxImagePropUniqueIdentifier, {name_ + std::to_string(connection_)});
        }
        made->fill(*source_, time, call->field);
    }
    *image = made->handle();
    return kOfxStatOK;
}

Effect::Effect() {
    params.effect_props = &props;
}

Clip* Effect::find_clip(const std::string& name) const {
    const auto found =
        std::find_if(clips.begin(), clips.end(), [&](const auto& c) { return c->name() == name; });
    return found != clips.end() ? found->get() : nullptr;
}

Clip& Effect::clip(const std::string& name) const {
    if (Clip* found = find_clip(name)) return *found;
    throw std::out_of_range("no clip " + name);
}

}  // namespace ofxtest
