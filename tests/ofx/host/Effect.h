// Effects of the test host: their parameters and clips, the images that clips give out, and the action that a
// thread is in. Parameters have values with keys, locked call by call.
#pragma once

#include <algorithm>
#include <atomic>
#include <climits>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <shared_mutex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "abi/OfxImageEffect.h"
#include "abi/OfxParam.h"
#include "ofx/host/PropertySet.h"

namespace ofxtest {

class Clip;
class ParamSet;

class Param {
  public:
    // Numbers, or a text; both empty for parameters that hold nothing. Keys by time take the numbers' place.
    struct Content {
        std::vector<double> numbers{};
        std::string text{};
        std::map<double, std::vector<double>> keys{};
        friend bool operator==(const Content&, const Content&) = default;
    };

    // As it is described; of a type that no host knows null.
    static std::unique_ptr<Param> described(ParamSet& owner, const std::string& type,
                                            const std::string& name) {
        // Values of each type; 0 for those that hold none.
        static const std::map<std::string, int> dimensions{
            {kOfxParamTypeDouble, 1},    {kOfxParamTypeDouble2D, 2}, {kOfxParamTypeRGB, 3},
            {kOfxParamTypeRGBA, 4},      {kOfxParamTypeBoolean, 1},  {kOfxParamTypeChoice, 1},
            {kOfxParamTypeString, 1},    {kOfxParamTypeGroup, 0},    {kOfxParamTypePage, 0},
            {kOfxParamTypePushButton, 0}};
        const auto known = dimensions.find(type);
        if (known == dimensions.end()) return nullptr;
        const int n = known->second;
        auto param = std::make_unique<Param>(owner, type, name, n);
        PropertySet& p = param->props;
        p.add_all({kOfxPropLabel, kOfxParamPropScriptName, kOfxParamPropHint, kOfxParamPropParent}, kText);
        p.add_all({kOfxParamPropSecret}, 0);
        p.add_all({kOfxParamPropEnabled}, 1);
        if (type == kOfxParamTypeGroup) p.add_all({kOfxParamPropGroupOpen}, 1);
        if (type == kOfxParamTypePage) p.add_lists({kOfxParamPropPageChild}, kText);
        if (n == 0) return param;

        const bool number = !param->is_text() && !param->is_int();
        p.add_all({kOfxParamPropAnimates}, number ? 1 : 0);
        p.add(kOfxParamPropIsAnimating, {0});
        p.add_all({kOfxParamPropEvaluateOnChange}, 1);
        p.add_all({kOfxParamPropDefault}, number ? Value(0.0) : param->is_int() ? Value(0) : kText, n);
        if (type == kOfxParamTypeChoice) p.add_lists({kOfxParamPropChoiceOption}, kText);
        if (!number) return param;
        p.add_all({kOfxParamPropMin, kOfxParamPropDisplayMin, kOfxParamPropMax, kOfxParamPropDisplayMax}, 0.0,
                  n);
        if (!type.starts_with(kOfxParamTypeDouble)) return param;
        p.add_all({kOfxParamPropIncrement}, 1.0);
        p.add_all({kOfxParamPropDigits, kOfxParamPropUseHostOverlayHandle}, 0);
        p.add_all({kOfxParamPropDoubleType, kOfxParamPropDefaultCoordinateSystem}, kText);
        if (n > 1) p.add_all({kOfxParamPropDimensionLabel}, kText, n);
        return param;
    }
    Param(ParamSet& set, std::string kind, std::string called, int values)
        : owner(set), type(std::move(kind)), name(std::move(called)), dimension(values) {}
    // An instance's, at its default.
    Param(ParamSet& set, const Param& descriptor)
        : Param(set, descriptor.type, descriptor.name, descriptor.dimension) {
        props = descriptor.props;
        if (is_text()) content_.text = props.string_at(kOfxParamPropDefault);
        for (int i = 0; i < dimension && !is_text(); ++i) {
            content_.numbers.push_back(is_int() ? props.int_at(kOfxParamPropDefault, i)
                                                : props.double_at(kOfxParamPropDefault, i));
        }
    }

    bool is_text() const { return type == kOfxParamTypeString; }
    bool is_int() const { return type == kOfxParamTypeBoolean || type == kOfxParamTypeChoice; }
    bool holds_value() const { return dimension > 0; }
    bool enabled() const { return props.int_at(kOfxParamPropEnabled) != 0; }

    // Linear between keys, held beyond them; Booleans, choices and texts step. Without keys the value.
    Content at(double time) const {
        const std::shared_lock lock(lock_);
        const auto& keys = content_.keys;
        if (keys.empty()) return content_;
        const auto after = keys.upper_bound(time);
        if (after == keys.begin()) return {.numbers = after->second};
        const auto before = std::prev(after);
        Content result{.numbers = before->second};
        if (after == keys.end() || is_int()) return result;
        const double part = (time - before->first) / (after->first - before->first);
        for (std::size_t i = 0; i < result.numbers.size(); ++i)
            result.numbers[i] += part * (after->second[i] - before->second[i]);
        return result;
    }
    Content value() const { return at(0.0); }
    // With the keys.
    Content content() const {
        const std::shared_lock lock(lock_);
        return content_;
    }
    void assign(const Content& content) {
        const std::unique_lock lock(lock_);
        content_ = content;
        props.put(kOfxParamPropIsAnimating, {content_.keys.empty() ? 0 : 1});
    }
    // These, and the keys that are there already.
    void set_keys(const std::map<double, std::vector<double>>& keys) {
        if (props.int_at(kOfxParamPropAnimates) == 0) note_fault(name + " does not animate");
        Content keyed = content();
        for (const auto& [time, numbers] : keys) keyed.keys[time] = numbers;
        assign(keyed);
    }

    ParamSet& owner;
    const std::string type, name;
    const int dimension;
    PropertySet props;

  private:
    mutable std::shared_mutex lock_;
    Content content_;
};

// The one of this name, or null.
template <class T>
T* named(const std::vector<std::unique_ptr<T>>& all, const std::string& name) {
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const auto& one) { return one->name == name; });
    return found != all.end() ? found->get() : nullptr;
}

class ParamSet {
  public:
    Param* find(const std::string& name) const { return named(all, name); }
    Param& get(const std::string& name) const {
        if (Param* param = find(name)) return *param;
        throw std::out_of_range("no parameter " + name);
    }

    // What the plug-in sets, at a key's time if there is one: a step of its own, or part of the block that it
    // opened.
    void edit(Param& param, const Param::Content& content, const double* key) {
        if (open_blocks == 0) undo.emplace_back();
        undo.back().emplace_back(&param, param.content());
        if (key != nullptr) {
            param.set_keys({{*key, content.numbers}});
        } else {
            param.assign(content);
        }
        if (when_edited) when_edited(param);
    }
    // What was before each step.
    using Step = std::vector<std::pair<Param*, Param::Content>>;
    std::vector<Step> undo;
    int open_blocks = 0;

    std::set<std::string> refused_children;   // of pages, answered ErrValue
    std::set<std::string> refused_types;      // answered ErrUnsupported
    std::function<void(Param&)> when_edited;  // tells the plug-in of its own change
    bool describing = false;
    PropertySet* effect_props = nullptr;
    std::vector<std::unique_ptr<Param>> all;
};

extern const OfxParameterSuiteV1 kParameterSuite;

// Pixels of a render at a scale, of this width over height, that cover a canonical rectangle; and back.
OfxRectI pixels_of(const OfxRectD& canonical, double scale, double aspect = 1.0);
OfxRectD canonical_of(const OfxRectI& pixels, double scale, double aspect);

inline OfxRectI shared(const OfxRectI& a, const OfxRectI& b) {
    return {std::max(a.x1, b.x1), std::max(a.y1, b.y1), std::min(a.x2, b.x2), std::min(a.y2, b.y2)};
}

// A finished picture: interleaved channels as the clip stores them (0 to 255, 0 to 65535, or floats), the
// bottom row first.
struct Frame {
    OfxRectI box{};
    int channels = 4;
    std::vector<float> values;

    Frame() = default;
    explicit Frame(const OfxRectI& b, int channel_count = 4)
        : box(b),
          channels(channel_count),
          values(static_cast<std::size_t>((b.x2 - b.x1) * (b.y2 - b.y1) * channel_count)) {}
    float& at(int x, int y, int c) {
        return values[static_cast<std::size_t>(((y - box.y1) * (box.x2 - box.x1) + x - box.x1) * channels +
                                               c)];
    }
};

// What a plug-in may do in the action that the calling thread is in, and what a render gave it.
struct Call {
    bool per_frame = false;
    bool may_set_params = false;
    bool may_fetch = false;
    double scale = 1.0;
    OfxRectI window{};
    std::string field = kOfxImageFieldNone;
    std::map<std::string, OfxRectD> regions{};  // of interest, canonical, by clip; none: all of the clip
    Frame* output = nullptr;

    // The calling thread's; outside of actions one that may do nothing.
    static const Call& now() { return current != nullptr ? *current : kOutside; }
    static thread_local const Call* current;
    static const Call kOutside;
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
};

// Values from black to white of a depth, and the one that stands for 0 to 1; channels of a pixel.
double white_of(const std::string& depth);
double level_of(float value, const std::string& depth);
int channels_of(const std::string& components);

// An image that a plug-in holds. Rows are padded; memory is exactly as large as needed.
class Image final : public PropertySet {
  public:
    Image(const Clip& clip, const OfxRectI& bounds, const OfxRectI& rod, double scale);
    ~Image() { --held; }
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    static std::atomic<int> held;  // not released

    // Rows of the other field show the row beside them.
    void fill(const Source& source, double time, const std::string& field);
    // Outputs: takes the call's window and field into the frame; notes a fault when anything else was
    // written.
    void collect(const Call& call, Frame& frame) const;
    bool is_output = false;

  private:
    unsigned char* address(int x, int y, int c) const;

    OfxRectI bounds_;
    std::string depth_;
    int channels_;
    std::size_t bytes_;  // of a channel
    std::ptrdiff_t row_bytes_;
    std::vector<unsigned char> memory_;
    unsigned char* first_;
};

class Clip {
  public:
    explicit Clip(std::string called) : name(std::move(called)) {
        props.add_all({kOfxPropLabel, kOfxImageClipPropFieldExtraction}, kText);
        props.add_lists({kOfxImageEffectPropSupportedComponents}, kText);
        props.add_all({kOfxImageClipPropOptional, kOfxImageClipPropIsMask,
                       kOfxImageEffectPropTemporalClipAccess, kOfxImageEffectPropSupportsTiles},
                      0);
        props.add(kOfxImageClipPropConnected, {0});
        props.add(kOfxImageEffectPropPixelDepth, {std::string(kOfxBitDepthNone)});
        props.add(kOfxImageEffectPropComponents, {std::string(kOfxImageComponentNone)});
        props.add(kOfxImagePropPixelAspectRatio, {1.0});
    }

    void connect(std::shared_ptr<const Source> source) {
        source_ = std::move(source);
        static std::atomic<int> connections{0};
        connection_ = ++connections;
        const Source& s =
            source_ ? *source_ : Source{.depth = kOfxBitDepthNone, .components = kOfxImageComponentNone};
        const auto known = props.strings(kOfxImageEffectPropSupportedComponents);
        if (source_ && std::find(known.begin(), known.end(), s.components) == known.end())
            note_fault(name + " does not take " + s.components);
        props.put(kOfxImageClipPropConnected, {source_ ? 1 : 0});
        props.put(kOfxImageEffectPropPixelDepth, {s.depth});
        props.put(kOfxImageEffectPropComponents, {s.components});
        props.put(kOfxImagePropPixelAspectRatio, {s.aspect});
    }
    const Source* source() const { return source_.get(); }
    bool is_output() const { return name == kOfxImageEffectOutputClipName; }
    double aspect() const { return props.double_at(kOfxImagePropPixelAspectRatio); }
    OfxRectD rod() const {
        if (!source_) return {};
        if (source_->endless) return {INT_MIN, INT_MIN, INT_MAX, INT_MAX};
        return canonical_of(source_->box, 1.0, aspect());
    }

    OfxStatus fetch(double time, const OfxRectD* region, OfxPropertySetHandle* image) const {
        const Call& call = Call::now();
        if (!call.may_fetch) return note_fault("fetches an image at the wrong time: " + name);
        if (!source_ || source_->fails) return kOfxStatFailed;
        const double scale = source_->scaled ? call.scale : 1.0;
        const OfxRectI rod = pixels_of(this->rod(), scale, aspect());
        const auto asked = call.regions.find(name);
        if (region == nullptr && asked != call.regions.end()) region = &asked->second;
        OfxRectI bounds = region != nullptr ? shared(rod, pixels_of(*region, scale, aspect())) : rod;
        const OfxRectI& w = call.window;
        if (is_output()) bounds = {w.x1 - 3, w.y1 - 2, w.x2 + 1, w.y2 + 4};  // a little more than the window
        const int n = source_->missing;
        auto made = std::make_unique<Image>(
            *this, OfxRectI{bounds.x1 + n, bounds.y1 + n, bounds.x2 - n, bounds.y2 - n}, rod, scale);
        if (!is_output()) {
            if (source_->identified)
                made->add(kOfxImagePropUniqueIdentifier, {name + std::to_string(connection_)});
            made->fill(*source_, time, call.field);
        }
        *image = made.release()->handle();
        return kOfxStatOK;
    }

    const std::string name;
    PropertySet props;

  private:
    std::shared_ptr<const Source> source_;
    int connection_ = 0;  // no other of the process has this number
};

// A descriptor or an instance.
class Effect {
  public:
    Effect() { params.effect_props = &props; }
    virtual ~Effect() = default;
    Effect(const Effect&) = delete;
    Effect& operator=(const Effect&) = delete;

    Clip& clip(const std::string& name) const {
        if (Clip* found = find_clip(name)) return *found;
        throw std::out_of_range("no clip " + name);
    }
    Clip* find_clip(const std::string& name) const { return named(clips, name); }

    PropertySet props;
    ParamSet params;
    std::vector<std::unique_ptr<Clip>> clips;
    std::atomic<int> polls{0};         // of abort
    std::atomic<int> abort_after{-1};  // polls until the user aborts; never when negative
    std::function<void()> when_polled;
};

extern const OfxImageEffectSuiteV1 kImageEffectSuite;

}  // namespace ofxtest
