#include "ofx/host/Effect.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace ofxtest {

namespace {

constexpr unsigned char kUnwritten = 0xA7;
constexpr std::size_t kPadding = 5;  // channels at the end of a row

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

thread_local const Call* Call::current = nullptr;
const Call Call::kOutside;

double white_of(const std::string& depth) {
    return depth == kOfxBitDepthByte ? 255.0 : depth == kOfxBitDepthShort ? 65535.0 : 1.0;
}

double level_of(float value, const std::string& depth) {
    if (depth == kOfxBitDepthFloat) return value;
    return static_cast<double>(
        std::lround(std::clamp(static_cast<double>(value), 0.0, 1.0) * white_of(depth)));
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
      bytes_(depth_ == kOfxBitDepthByte    ? 1U
             : depth_ == kOfxBitDepthFloat ? 4U
                                           : 2U) {
    const std::size_t line = static_cast<std::size_t>((bounds.x2 - bounds.x1) * channels_) * bytes_;
    const std::size_t stride = line + kPadding * bytes_;
    const auto above = static_cast<std::size_t>(std::max(bounds.y2 - bounds.y1 - 1, 0));
    const bool flipped = clip.source() != nullptr && clip.source()->upside_down;
    memory_.assign(bounds.y2 > bounds.y1 ? above * stride + line : 0, kUnwritten);
    first_ = memory_.data() + (flipped ? above * stride : 0);
    row_bytes_ = static_cast<std::ptrdiff_t>(stride) * (flipped ? -1 : 1);

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
    return first_ + (y - bounds_.y1) * row_bytes_ +
           ((x - bounds_.x1) * channels_ + c) * static_cast<std::ptrdiff_t>(bytes_);
}

void Image::fill(const Source& source, double time, const std::string& field) {
    for (int y = bounds_.y1; y < bounds_.y2; ++y) {
        for (int x = bounds_.x1; x < bounds_.x2; ++x) {
            for (int c = 0; c < channels_; ++c) {
                const float value = source.pixel(time, channels_ == 1 ? 3 : c, x, line_of(y, field));
                const bool exact = depth_ == kOfxBitDepthFloat;
                const auto whole = exact ? 0U : static_cast<unsigned>(level_of(value, depth_));
                std::memcpy(address(x, y, c), exact ? static_cast<const void*>(&value) : &whole, bytes_);
            }
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
                float value = 0;
                unsigned whole = 0;
                const bool exact = depth_ == kOfxBitDepthFloat;
                std::memcpy(exact ? static_cast<void*>(&value) : &whole, at, bytes_);
                frame.at(x, y, c) = exact ? value : static_cast<float>(whole);
                window += static_cast<std::ptrdiff_t>(bytes_);
                unwritten += std::count(at, at + bytes_, kUnwritten);
            }
        }
    }
    const std::ptrdiff_t all = std::count(memory_.begin(), memory_.end(), kUnwritten);
    if (all - unwritten != static_cast<std::ptrdiff_t>(memory_.size()) - window)
        note_fault("writes beside the render window or its field");
}

namespace {

OfxStatus get_properties(OfxImageEffectHandle effect, OfxPropertySetHandle* props) {
    *props = behind<Effect>(effect).props.handle();
    return kOfxStatOK;
}

OfxStatus get_params(OfxImageEffectHandle effect, OfxParamSetHandle* params) {
    *params = reinterpret_cast<OfxParamSetHandle>(&behind<Effect>(effect).params);
    return kOfxStatOK;
}

OfxStatus define_clip(OfxImageEffectHandle handle, const char* name, OfxPropertySetHandle* props) {
    auto& effect = behind<Effect>(handle);
    if (!effect.params.describing || effect.find_clip(name) != nullptr)
        return note_fault(std::string("defines a clip twice, or outside a describe action: ") + name,
                          kOfxStatErrExists);
    *props = effect.clips.emplace_back(std::make_unique<Clip>(name))->props.handle();
    return kOfxStatOK;
}

OfxStatus clip_handle(OfxImageEffectHandle handle, const char* name, OfxImageClipHandle* clip,
                      OfxPropertySetHandle* props) {
    return hand_out(behind<Effect>(handle).find_clip(name), clip, props);
}

OfxStatus get_image(OfxImageClipHandle clip, OfxTime time, const OfxRectD* region,
                    OfxPropertySetHandle* image) {
    return behind<Clip>(clip).fetch(time, region, image);
}

OfxStatus release_image(OfxPropertySetHandle handle) {
    const std::unique_ptr<Image> image(static_cast<Image*>(&behind<PropertySet>(handle)));
    const Call& call = Call::now();
    if (image->is_output && call.output != nullptr) image->collect(call, *call.output);
    return kOfxStatOK;
}

OfxStatus clip_rod(OfxImageClipHandle handle, OfxTime, OfxRectD* bounds) {
    const auto& clip = behind<Clip>(handle);
    *bounds = clip.rod();
    return clip.source() != nullptr ? kOfxStatOK : kOfxStatFailed;
}

int abort_wanted(OfxImageEffectHandle handle) {
    auto& effect = behind<Effect>(handle);
    if (effect.when_polled) effect.when_polled();
    const int polls = effect.polls.fetch_add(1, std::memory_order_relaxed) + 1;
    const int after = effect.abort_after.load(std::memory_order_relaxed);
    return after >= 0 && polls > after ? 1 : 0;
}

}  // namespace

const OfxImageEffectSuiteV1 kImageEffectSuite = [] {
    OfxImageEffectSuiteV1 s{};
    s.getPropertySet = entered<get_properties>;
    s.getParamSet = entered<get_params>;
    s.clipDefine = entered<define_clip>;
    s.clipGetHandle = entered<clip_handle>;
    s.clipGetImage = entered<get_image>;
    s.clipReleaseImage = entered<release_image>;
    s.clipGetRegionOfDefinition = entered<clip_rod>;
    s.abort = entered<abort_wanted>;
    return s;
}();

}  // namespace ofxtest
