// Effects of the test host: their clips, and their parameters, whose values have keys, locked call by call.
#pragma once

#include <climits>
#include <memory>
#include <shared_mutex>
#include <stdexcept>

#include "abi/OfxParam.h"
#include "ofx/host/Image.h"

namespace ofxtest {

struct HostOptions {
    std::set<std::string> missing{};           // suites, name and version: "OfxMessageSuite 2"
    std::set<std::string> refused_types{};     // of parameters: answered ErrUnsupported
    std::set<std::string> refused_children{};  // of pages: answered ErrValue
    bool tiles = true;
    bool overlays = false;            // interacts over the viewer
    bool images_in_interacts = true;  // lends images while the pen is used
    bool bare = false;                // the host tells nothing of itself
};

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

    // Values of each type that hosts know; 0 for those that hold none.
    static inline const std::map<std::string, int> kDimensions{
        {kOfxParamTypeDouble, 1},    {kOfxParamTypeDouble2D, 2}, {kOfxParamTypeRGB, 3},
        {kOfxParamTypeRGBA, 4},      {kOfxParamTypeBoolean, 1},  {kOfxParamTypeChoice, 1},
        {kOfxParamTypeString, 1},    {kOfxParamTypeGroup, 0},    {kOfxParamTypePage, 0},
        {kOfxParamTypePushButton, 0}};

    // As it is described.
    Param(ParamSet& set, const std::string& kind, const std::string& called)
        : owner(set), type(kind), name(called), dimension(kDimensions.at(kind)) {
        props.add_all({kOfxPropLabel, kOfxParamPropScriptName, kOfxParamPropHint, kOfxParamPropParent},
                      kText);
        props.add_all({kOfxParamPropSecret}, 0);
        props.add_all({kOfxParamPropEnabled}, 1);
        if (type == kOfxParamTypeGroup) props.add_all({kOfxParamPropGroupOpen}, 1);
        if (type == kOfxParamTypePage) props.add_lists({kOfxParamPropPageChild}, kText);
        if (!holds_value()) return;

        const bool number = !is_text() && !is_int();
        props.add_all({kOfxParamPropAnimates}, number ? 1 : 0);
        props.add(kOfxParamPropIsAnimating, {0});
        props.add_all({kOfxParamPropEvaluateOnChange, kOfxParamPropCanUndo, kOfxParamPropPersistant}, 1);
        if (is_text()) {
            props.add_all({kOfxParamPropStringMode}, kText);
            props.add_all({kOfxParamPropStringFilePathExists}, 1);
        }
        props.add_all({kOfxParamPropDefault}, number ? Value(0.0) : is_int() ? Value(0) : kText, dimension);
        if (type == kOfxParamTypeChoice) props.add_lists({kOfxParamPropChoiceOption}, kText);
        if (!number) return;
        props.add_all({kOfxParamPropMin, kOfxParamPropDisplayMin, kOfxParamPropMax, kOfxParamPropDisplayMax},
                      0.0, dimension);
        if (!type.starts_with(kOfxParamTypeDouble)) return;
        props.add_all({kOfxParamPropIncrement}, 1.0);
        props.add_all({kOfxParamPropDigits, kOfxParamPropUseHostOverlayHandle}, 0);
        props.add_all({kOfxParamPropDoubleType, kOfxParamPropDefaultCoordinateSystem}, kText);
        if (dimension > 1) props.add_all({kOfxParamPropDimensionLabel}, kText, dimension);
    }
    // An instance's, at its default.
    Param(ParamSet& set, const Param& d)
        : owner(set), type(d.type), name(d.name), dimension(d.dimension), props(d.props) {
        if (is_text()) content_.text = props.string_at(kOfxParamPropDefault);
        for (int i = 0; i < dimension && !is_text(); ++i) {
            content_.numbers.push_back(is_int() ? props.int_at(kOfxParamPropDefault, i)
                                                : props.double_at(kOfxParamPropDefault, i));
        }
    }

    bool is_text() const { return type == kOfxParamTypeString; }
    bool is_int() const { return type == kOfxParamTypeBoolean || type == kOfxParamTypeChoice; }
    bool holds_value() const { return dimension > 0; }
    bool saved() const { return holds_value() && props.int_at(kOfxParamPropPersistant) != 0; }
    bool enabled() const { return props.int_at(kOfxParamPropEnabled) != 0; }

    // Linear between keys, held beyond them; Booleans, choices and texts step. Without keys the value.
    Content value(double time = 0.0) const {
        const Content all = content();
        const auto& keys = all.keys;
        if (keys.empty()) return all;
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
    // With the keys.
    Content content() const {
        const std::shared_lock lock(lock_);
        return content_;
    }
    void assign(const Content& content) {
        const std::lock_guard lock(lock_);
        content_ = content;
        props.add(kOfxParamPropIsAnimating, {content_.keys.empty() ? 0 : 1});
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

// The one of this name, or null; and where it must be there.
template <class T>
T* named(const std::vector<std::unique_ptr<T>>& all, const std::string& name) {
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const auto& one) { return one->name == name; });
    return found != all.end() ? found->get() : nullptr;
}
template <class T>
T& there(const std::vector<std::unique_ptr<T>>& all, const std::string& name) {
    if (T* found = named(all, name)) return *found;
    throw std::out_of_range("nothing is called " + name);
}

class ParamSet {
  public:
    explicit ParamSet(PropertySet& of_effect) : props(of_effect) {}

    Param* find(const std::string& name) const { return named(all, name); }
    Param& get(const std::string& name) const { return there(all, name); }

    // What was before each step.
    using Step = std::vector<std::pair<Param*, Param::Content>>;
    std::vector<Step> undo;
    int open_blocks = 0;

    std::function<void(const std::string& name)> when_edited;  // tells the plug-in of its own change
    HostOptions options;
    PropertySet& props;  // the effect's
    std::vector<std::unique_ptr<Param>> all;
};

class Clip {
  public:
    explicit Clip(std::string called) : name(std::move(called)) {
        props.add_all({kOfxPropLabel, kOfxImageClipPropFieldExtraction}, kText);
        props.add_lists({kOfxImageEffectPropSupportedComponents}, kText);
        props.add_all({kOfxImageClipPropOptional, kOfxImageClipPropIsMask,
                       kOfxImageEffectPropTemporalClipAccess, kOfxImageEffectPropSupportsTiles},
                      0);
        connect(nullptr);
    }

    void connect(std::shared_ptr<const Source> source) {
        source_ = std::move(source);
        static std::atomic<int> connections{0};
        connection = ++connections;
        kept.reset();
        const Source none{.depth = kOfxBitDepthNone, .components = kOfxImageComponentNone};
        const Source& s = source_ ? *source_ : none;
        const auto known = props.strings(kOfxImageEffectPropSupportedComponents);
        if (source_ && std::find(known.begin(), known.end(), s.components) == known.end())
            note_fault(name + " does not take " + s.components);
        props.add(kOfxImageClipPropConnected, {source_ ? 1 : 0});
        props.add(kOfxImageEffectPropPixelDepth, {s.depth});
        props.add(kOfxImageEffectPropComponents, {s.components});
        props.add(kOfxImagePropPixelAspectRatio, {s.aspect});
    }
    const Source* source() const { return source_.get(); }
    bool is_output() const { return name == kOfxImageEffectOutputClipName; }
    double aspect() const { return props.double_at(kOfxImagePropPixelAspectRatio); }
    OfxRectD rod() const {
        if (!source_) return {};
        if (source_->endless) return {INT_MIN, INT_MIN, INT_MAX, INT_MAX};
        return canonical_of(source_->box, 1.0, aspect());
    }

    const std::string name;
    PropertySet props;
    int connection = 0;  // no other of the process has this number
    Image::Memory kept;  // by steady sources

  private:
    std::shared_ptr<const Source> source_;
};

// A descriptor or an instance.
class Effect {
  public:
    virtual ~Effect() = default;

    Clip& clip(const std::string& name) const { return there(clips, name); }
    Clip* find_clip(const std::string& name) const { return named(clips, name); }

    PropertySet props;
    ParamSet params{props};
    std::vector<std::unique_ptr<Clip>> clips;
    std::atomic<int> polls{0};         // of abort
    std::atomic<int> abort_after{-1};  // polls until the user aborts; never when negative
    std::function<void()> when_polled;
};

}  // namespace ofxtest
