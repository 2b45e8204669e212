// Pictures of the test host: what is connected to its clips, the images that a plug-in holds of them,
// finished frames, and the action that a thread is in.
#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <memory>

#include "ZoImage/Samples.h"
#include "abi/OfxImageEffect.h"
#include "ofx/host/PropertySet.h"

namespace ofxtest {

// Pixels of a render at a scale, of this width over height, that cover a canonical rectangle; and back.
inline OfxRectI pixels_of(const OfxRectD& r, double scale, double aspect = 1.0) {
    return {static_cast<int>(std::floor(r.x1 * scale / aspect)), static_cast<int>(std::floor(r.y1 * scale)),
            static_cast<int>(std::ceil(r.x2 * scale / aspect)), static_cast<int>(std::ceil(r.y2 * scale))};
}
inline OfxRectD canonical_of(const OfxRectI& p, double scale, double aspect) {
    return {p.x1 * aspect / scale, p.y1 / scale, p.x2 * aspect / scale, p.y2 / scale};
}

// A finished picture: interleaved channels, the values that the clip's samples stand for, the bottom row
// first.
struct Frame {
    explicit Frame(const OfxRectI& b = {}, int channel_count = 4)
        : box(b),
          channels(channel_count),
          values(static_cast<std::size_t>((b.x2 - b.x1) * (b.y2 - b.y1) * channel_count)) {}
    float& at(int x, int y, int c) {
        return values[static_cast<std::size_t>(((y - box.y1) * (box.x2 - box.x1) + x - box.x1) * channels +
                                               c)];
    }

    OfxRectI box;
    int channels;
    std::vector<float> values;
};

// What a plug-in may do in the action that the calling thread is in, and what a render gave it.
struct Call {
    bool may_define = false;
    bool per_frame = false;
    bool may_set_params = false;
    bool may_fetch = false;
    bool refuses_images = false;  // the host lends none now, by its own choice
    bool may_draw = false;
    double scale = 1.0;
    OfxRectI window{};
    std::string field = kOfxImageFieldNone;
    std::map<std::string, OfxRectD> regions{};  // of interest, canonical, by clip; none: all of the clip
    Frame* output = nullptr;

    // The calling thread's; outside of actions one that may do nothing.
    static const Call& now() {
        static const Call outside;
        return current != nullptr ? *current : outside;
    }
    static inline thread_local const Call* current = nullptr;
};

// What is connected to a clip. The box is in pixels of full resolution; `pixel` is asked for pixels of the
// render, channels 0 to 3, and should give 0 to 1 for integer depths.
struct Source {
    OfxRectI box{};
    std::function<float(double time, int channel, int x, int y)> pixel{};
    std::string depth = kOfxBitDepthFloat;
    std::string components = kOfxImageComponentRGBA;
    double aspect = 1.0;       // of its pixels
    int missing = 0;           // rows and columns at each side that its images lack
    bool identified = true;    // images have identifiers, one for all times, scales and fields
    bool upside_down = false;  // negative row bytes
    bool fails = false;        // fetching replies Failed
    bool endless = false;      // is everywhere; images have what is asked for
    bool scaled = true;        // false: images come at full scale whatever was asked for
    bool steady = false;       // the same picture at all times: its images lend one memory
};

// What a clip of the depth keeps of a value: its bits, and the value that they stand for.
inline unsigned bits_of(float value, const std::string& depth) {
    namespace zo = Zo::Image;
    if (depth == kOfxBitDepthByte) return zo::from_float<std::uint8_t>(value);
    if (depth == kOfxBitDepthShort) return zo::from_float<std::uint16_t>(value);
    if (depth == kOfxBitDepthHalf) return static_cast<unsigned>(zo::from_float<zo::Half>(value));
    return std::bit_cast<unsigned>(value);
}
inline float value_of(unsigned bits, const std::string& depth) {
    namespace zo = Zo::Image;
    if (depth == kOfxBitDepthByte) return zo::to_float(static_cast<std::uint8_t>(bits));
    if (depth == kOfxBitDepthShort) return zo::to_float(static_cast<std::uint16_t>(bits));
    if (depth == kOfxBitDepthHalf) return zo::to_float(static_cast<zo::Half>(bits));
    return std::bit_cast<float>(bits);
}
inline float kept(float value, const std::string& depth) {
    return value_of(bits_of(value, depth), depth);
}
inline int channels_of(const std::string& components) {
    return components == kOfxImageComponentRGBA ? 4 : components == kOfxImageComponentRGB ? 3 : 1;
}

// An image that a plug-in holds. Rows are padded; memory is exactly as large as needed, and that of an
// earlier image where that is given and fits.
class Image final : public PropertySet {
  public:
    using Memory = std::shared_ptr<std::vector<unsigned char>>;
    Image(const Source& source, const OfxRectI& bounds, const OfxRectI& rod, double scale, const Memory& kept)
        : bounds_(bounds),
          depth_(source.depth),
          channels_(channels_of(source.components)),
          bytes_(depth_ == kOfxBitDepthFloat  ? 4U
                 : depth_ == kOfxBitDepthByte ? 1U
                                              : 2U) {
        const std::size_t padding = source.steady ? 0 : 5;  // channels at the end of a row
        const std::size_t line = static_cast<std::size_t>((bounds.x2 - bounds.x1) * channels_) * bytes_;
        const std::size_t stride = line + padding * bytes_;
        const auto above = static_cast<std::size_t>(std::max(bounds.y2 - bounds.y1 - 1, 0));
        const std::size_t bytes = bounds.y2 > bounds.y1 ? above * stride + line : 0;
        is_kept = kept && kept->size() == bytes;
        memory = is_kept ? kept : std::make_shared<std::vector<unsigned char>>(bytes, kUnwritten);
        first_ = memory->data() + (source.upside_down ? above * stride : 0);
        row_bytes_ = static_cast<std::ptrdiff_t>(stride) * (source.upside_down ? -1 : 1);

        add(kOfxImagePropData, {static_cast<void*>(first_)});
        add(kOfxImagePropBounds, {bounds.x1, bounds.y1, bounds.x2, bounds.y2});
        add(kOfxImagePropRegionOfDefinition, {rod.x1, rod.y1, rod.x2, rod.y2});
        add(kOfxImagePropRowBytes, {static_cast<int>(row_bytes_)});
        add(kOfxImageEffectPropPixelDepth, {source.depth});
        add(kOfxImageEffectPropComponents, {source.components});
        add(kOfxImageEffectPropRenderScale, {scale, scale});
        ++held;
    }
    ~Image() { --held; }
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    static inline std::atomic<int> held{0};  // not released

    // Rows of the other field show the row beside them.
    void fill(const Source& source, double time, const std::string& field) {
        for (int y = bounds_.y1; y < bounds_.y2; ++y) {
            for (int x = bounds_.x1; x < bounds_.x2; ++x) {
                for (int c = 0; c < channels_; ++c) {
                    const float value = source.pixel(time, channels_ == 1 ? 3 : c, x, line_of(y, field));
                    const unsigned bits = bits_of(value, depth_);
                    std::memcpy(address(x, y, c), &bits, bytes_);
                }
            }
        }
    }
    // Outputs: takes the call's window and field into the frame; notes a fault when anything else was
    // written.
    void collect(const Call& call) {
        const OfxRectI& w = call.window;
        for (int y = w.y1; y < w.y2; ++y) {
            if (line_of(y, call.field) != y) continue;
            for (int x = w.x1; x < w.x2; ++x) {
                for (int c = 0; c < channels_; ++c) {
                    unsigned bits = 0;
                    std::memcpy(&bits, address(x, y, c), bytes_);
                    call.output->at(x, y, c) = value_of(bits, depth_);
                    std::fill_n(address(x, y, c), bytes_, kUnwritten);
                }
            }
        }
        if (std::count(memory->begin(), memory->end(), kUnwritten) != std::ssize(*memory))
            note_fault("writes beside the render window or its field");
    }
    bool is_output = false;
    bool is_kept = false;  // what the memory holds is that of an earlier image
    Memory memory;

  private:
    static constexpr unsigned char kUnwritten = 0xA7;

    // A row of the field that stands for this one; the lower field has the even rows.
    static int line_of(int y, const std::string& field) {
        return field == kOfxImageFieldLower ? y & ~1 : field == kOfxImageFieldUpper ? y | 1 : y;
    }
    unsigned char* address(int x, int y, int c) const {
        return first_ + (y - bounds_.y1) * row_bytes_ +
               ((x - bounds_.x1) * channels_ + c) * static_cast<std::ptrdiff_t>(bytes_);
    }

    OfxRectI bounds_;
    std::string depth_;
    int channels_;
    std::size_t bytes_;  // of a channel
    std::ptrdiff_t row_bytes_;
    unsigned char* first_;
};

}  // namespace ofxtest
