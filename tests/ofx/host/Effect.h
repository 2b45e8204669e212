// Effects of the test host: their parameters and clips, the images that clips give out, and the action that a
// thread is in. Parameters have values with keys, locked call by call.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <shared_mutex>
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
                                            const std::string& name);
    // An instance's, at its default.
    Param(ParamSet& owner, const Param& descriptor);

    const std::string& name() const { return name_; }
    const std::string& type() const { return type_; }
    ParamSet& owner() const { return owner_; }
    bool is_text() const { return type_ == kOfxParamTypeString; }
    bool is_int() const { return type_ == kOfxParamTypeBoolean || type_ == kOfxParamTypeChoice; }
    bool holds_value() const { return dimension_ > 0; }
    int dimension() const { return dimension_; }
    bool enabled() const { return props.int_at(kOfxParamPropEnabled) != 0; }

    // Linear between keys, held beyond them; Booleans, choices and texts step. Without keys the value.
    Content at(double time) const;
    Content value() const { return at(0.0); }
    // With the keys.
    Content content() const;
    void assign(const Content& content);
    void set_key(double time, std::vector<double> numbers);

    PropertySet props;

  private:
    Param(ParamSet& owner, std::string type, std::string name, int dimension)
        : owner_(owner), type_(std::move(type)), name_(std::move(name)), dimension_(dimension) {}

    ParamSet& owner_;
    std::string type_;
    std::string name_;
    int dimension_;
    mutable std::shared_mutex lock_;
    Content content_;
};

class ParamSet {
  public:
    Param* find(const std::string& name) const;
    Param& get(const std::string& name) const;
    const std::vector<std::unique_ptr<Param>>& all() const { return params_; }
    void add(std::unique_ptr<Param> param) { params_.push_back(std::move(param)); }

    // What the plug-in sets, at a key's time if there is one: a step of its own, or part of the block that it
    // opened.
    void edit(Param& param, const Param::Content& content, const double* key);
    // What was before each step.
    using Step = std::vector<std::pair<Param*, Param::Content>>;
    std::vector<Step> undo;
    int open_blocks = 0;

    std::set<std::string> refused_children;   // of pages, answered ErrValue
    std::set<std::string> refused_types;      // answered ErrUnsupported
    std::function<void(Param&)> when_edited;  // tells the plug-in of its own change
    bool describing = false;
    PropertySet* effect_props = nullptr;

  private:
    std::vector<std::unique_ptr<Param>> params_;
};

const OfxParameterSuiteV1& parameter_suite();

// Pixels of a render at a scale, of this width over height, that cover a canonical rectangle; and back.
OfxRectI pixels_of(const OfxRectD& canonical, double scale, double aspect = 1.0);
OfxRectD canonical_of(const OfxRectI& pixels, double scale, double aspect);

// A finished picture: interleaved channels as the clip stores them (0 to 255, 0 to 65535, or floats), the
// bottom row first.
struct Frame {
    OfxRectI box{};
    int channels = 4;
    std::vector<float> values;

    Frame() = default;
    explicit Frame(const OfxRectI& b, int channel_count = 4);
    float& at(int x, int y, int c);
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

    static const Call& now();  // outside of actions one that may do nothing
    class Scope {
      public:
        explicit Scope(const Call* call) : outer_(std::exchange(current_, call)) {}
        ~Scope() { current_ = outer_; }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

      private:
        const Call* outer_;
    };

  private:
    static inline thread_local const Call* current_ = nullptr;
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

// Values from black to white of a depth; channels of a pixel.
double white_of(const std::string& depth);
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
    explicit Clip(const std::string& name);

    const std::string& name() const { return name_; }
    void connect(std::shared_ptr<const Source> source);
    const Source* source() const { return source_.get(); }
    bool is_output() const { return name_ == kOfxImageEffectOutputClipName; }
    double aspect() const { return props.double_at(kOfxImagePropPixelAspectRatio); }
    OfxRectD rod() const;

    OfxStatus fetch(double time, const OfxRectD* region, OfxPropertySetHandle* image) const;

    PropertySet props;

  private:
    std::string name_;
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

    Clip& clip(const std::string& name) const;
    Clip* find_clip(const std::string& name) const;

    PropertySet props;
    ParamSet params;
    std::vector<std::unique_ptr<Clip>> clips;
    std::atomic<int> polls{0};         // of abort
    std::atomic<int> abort_after{-1};  // polls until the user aborts; never when negative
};

const OfxImageEffectSuiteV1& image_effect_suite();

}  // namespace ofxtest
