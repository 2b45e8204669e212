// A small OpenFX host for tests: loads a bundle by its path, describes the plug-in, makes instances of it and
// drives their actions in the order that hosts keep.
//
// One host at a time, since several suites have no handle that would tell hosts apart. Nested calls are
// those of real hosts: what the plug-in sets tells the plug-in of the change before the setter returns.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "ofx/host/Effect.h"

namespace ofxtest {

class Instance;

struct HostOptions {
    std::set<std::string> missing{};  // suites, name and version: "OfxMessageSuite 2"
    std::vector<std::string> contexts{kOfxImageEffectContextGeneral, kOfxImageEffectContextFilter};
    std::set<std::string> refused_types{};     // of parameters
    std::set<std::string> refused_children{};  // of pages
    bool tiles = true;
    bool bare = false;  // the host tells nothing of itself
};

class Host {
  public:
    // Opens the binary and gives it the host; throws std::runtime_error when that fails.
    explicit Host(const std::string& bundle, HostOptions options = {});
    // Sends Unload if Load was sent, and closes the binary.
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    // Load, Describe, and DescribeInContext for the contexts of both sides; the first reply that is not OK.
    // May be called again, as some hosts do.
    OfxStatus load();
    const OfxPlugin& plugin() const { return *plugin_; }
    int plugin_count() const { return count_; }
    bool has_plugin(int n) const { return get_plugin_(n) != nullptr; }
    Effect& descriptor() { return *descriptor_; }
    Effect& descriptor(const std::string& context) { return *contexts_.at(context); }
    bool describes(const std::string& context) const { return contexts_.count(context) != 0; }
    const HostOptions& options() const { return options_; }

    // Defaults, then the given values, then CreateInstance; null when the plug-in fails. Clips are connected
    // afterwards. The host must outlive it.
    using Values = std::map<std::string, Param::Content>;
    std::unique_ptr<Instance> create(const std::string& context, const Values& saved = {});

    OfxStatus action(const char* name, Effect* effect, PropertySet* in = nullptr, PropertySet* out = nullptr,
                     const Call& call = {});

  private:
    static const void* fetch_suite(OfxPropertySetHandle host, const char* name, int version);

    HostOptions options_;
    PropertySet props_;
    OfxHost host_{};
    void* library_ = nullptr;
    OfxPlugin* (*get_plugin_)(int) = nullptr;
    int count_ = 0;
    OfxPlugin* plugin_ = nullptr;
    bool loaded_ = false;
    std::unique_ptr<Effect> descriptor_;
    std::map<std::string, std::unique_ptr<Effect>> contexts_;
};

class Instance final : public Effect {
  public:
    Instance(Host& host, const std::string& context, Effect& descriptor);
    ~Instance() override { host_.action(kOfxActionDestroyInstance, this); }

    OfxStatus create();
    // Connects a clip, or with null disconnects it, and tells the plug-in. Output takes depth and components.
    void connect(const std::string& clip, const Source* source);
    // What the user does.
    void set(const std::string& param, std::vector<double> numbers);
    void press(const std::string& button);
    void undo();
    void go_to(double time);
    // The values that a project file holds.
    Host::Values saved() const;

    OfxRectD region_of_definition(double time = 0.0, double scale = 1.0);
    // The clip that is passed through.
    std::optional<std::string> identity(const OfxRectI& window, double time = 0.0, double scale = 1.0);
    std::map<std::string, OfxRectD> regions_of_interest(const OfxRectD& region, double time = 0.0,
                                                        double scale = 1.0);
    // Renders a window, or a field's rows of it, into the frame; asks for regions of interest first when the
    // host knows tiles.
    OfxStatus render(Frame& frame, const OfxRectI& window, double time = 0.0, double scale = 1.0,
                     const std::string& field = kOfxImageFieldNone);
    // The window of a whole frame.
    OfxRectI window(double time = 0.0, double scale = 1.0);
    // A whole frame in one piece, within a sequence. Throws when an action fails.
    Frame render(double time = 0.0, double scale = 1.0);
    void sequence(const char* action, double time = 0.0, double scale = 1.0);

    PropertySet preferences;    // of clips; asked for anew after each change that they may depend on
    double viewer_scale = 1.0;  // at which the user presses buttons

  private:
    double aspect() const { return clip(kOfxImageEffectOutputClipName).aspect(); }
    void ask_preferences();
    void changed(const std::string& type, const std::string& name, const char* reason);

    Host& host_;
    bool created_ = false;
};

}  // namespace ofxtest
