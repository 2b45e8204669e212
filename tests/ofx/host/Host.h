// A small OpenFX host for tests: loads the bundle, describes the plug-in, makes instances of it and
// drives their actions in the order that hosts keep.
//
// One host at a time, since several suites have no handle that would tell hosts apart. Nested calls are
// those of real hosts: what the plug-in sets tells the plug-in of the change before the setter returns.
#pragma once

#include <dlfcn.h>

#include "abi/OfxInteract.h"
#include "ofx/host/Effect.h"

namespace ofxtest {

// Threads and the time line are the process's: their suites have no handle of a host.
struct Services {
    int threads = 2;                     // that multiThread runs jobs on; 1 is the calling thread
    bool threads_fail = false;           // multiThread launches none
    double time = 0.0;                   // that the user looks at
    OfxStatus answer = kOfxStatReplyNo;  // of the user to questions
};
inline Services services;
inline std::atomic<int> parallel_calls{0};  // of multiThread

class Host {
  public:
    // Opens the binary and gives it the host; throws std::runtime_error when that fails.
    explicit Host(HostOptions options) : options_(std::move(options)) {
        if (!options_.bare) {
            props_.add(kOfxParamHostPropSupportsChoiceAnimation, {1});
            props_.add(kOfxParamHostPropSupportsBooleanAnimation, {1});
            props_.add(kOfxImageEffectPropSupportsOverlays, {options_.overlays ? 1 : 0});
        }
        host_ = {props_.handle(), fetch_suite};
        for (const std::string& suite : options_.missing) props_.add("missing " + suite, {1});
        library_ = dlopen(OFX_BUNDLE_DIR "/Contents/Linux-x86-64/Veloxa.ofx", RTLD_NOW | RTLD_LOCAL);
        if (library_ == nullptr) throw std::runtime_error(dlerror());
        reinterpret_cast<decltype(&OfxSetHost)>(dlsym(library_, "OfxSetHost"))(&host_);
        count = reinterpret_cast<decltype(&OfxGetNumberOfPlugins)>(dlsym(library_, "OfxGetNumberOfPlugins"));
        plugin = reinterpret_cast<decltype(&OfxGetPlugin)>(dlsym(library_, "OfxGetPlugin"));
        plugin(0)->setHost(&host_);
    }
    // Sends Unload if Load was sent, and closes the binary.
    ~Host() {
        if (loaded_) action(kOfxActionUnload, nullptr);
        dlclose(library_);
    }

    // Load, Describe, and DescribeInContext for the contexts of both sides; the first reply that is not OK.
    // May be called again, as some hosts do.
    OfxStatus load() {
        OfxStatus status = action(kOfxActionLoad, nullptr);
        loaded_ = loaded_ || status == kOfxStatOK;
        if (status != kOfxStatOK) return status;
        descriptor_ = std::make_unique<Effect>();
        PropertySet& p = descriptor_->props;
        p.add_all({kOfxPropLabel, kOfxPropShortLabel, kOfxPropLongLabel, kOfxPropVersionLabel,
                   kOfxPropPluginDescription, kOfxImageEffectPluginPropGrouping,
                   kOfxImageEffectPluginRenderThreadSafety},
                  kText);
        p.add_all({kOfxPropIcon}, kText, 2);
        p.add_all({kOfxImageEffectPluginPropOverlayInteractV1, kOfxImageEffectPluginPropOverlayInteractV2},
                  static_cast<void*>(nullptr));
        p.add_lists({kOfxPropVersion}, 0);
        p.add_lists({kOfxImageEffectPropSupportedContexts, kOfxImageEffectPropSupportedPixelDepths,
                     kOfxImageEffectPropClipPreferencesSlaveParam, kOfxPluginPropParamPageOrder},
                    kText);
        p.add_all(
            {kOfxImageEffectPluginPropHostFrameThreading, kOfxImageEffectPropSupportsTiles,
             kOfxImageEffectPropSupportsMultiResolution, kOfxImageEffectPluginPropFieldRenderTwiceAlways,
             kOfxImageEffectPluginPropSingleInstance, kOfxImageEffectPropTemporalClipAccess,
             kOfxImageEffectPropSupportsMultipleClipDepths, kOfxImageEffectPropSupportsMultipleClipPARs},
            1);
        status = action(kOfxActionDescribe, descriptor_.get());
        if (status != kOfxStatOK) return status;
        contexts_.clear();
        for (const std::string& context : p.strings(kOfxImageEffectPropSupportedContexts)) {
            auto effect = std::make_unique<Effect>();
            effect->props = p;
            effect->params.options = options_;
            PropertySet in;
            in.add(kOfxImageEffectPropContext, {context});
            status = action(kOfxImageEffectActionDescribeInContext, effect.get(), &in, nullptr,
                            {.may_define = true});
            if (status != kOfxStatOK) return status;
            contexts_[context] = std::move(effect);
        }
        return kOfxStatOK;
    }
    decltype(&OfxGetNumberOfPlugins) count;
    decltype(&OfxGetPlugin) plugin;
    Effect& descriptor() { return *descriptor_; }
    Effect& descriptor(const std::string& context) { return *contexts_.at(context); }

    OfxStatus action(const char* name, Effect* effect, PropertySet* in = nullptr, PropertySet* out = nullptr,
                     const Call& call = {}) {
        const Call* outer = std::exchange(Call::current, &call);
        const auto handle = [](PropertySet* set) { return set != nullptr ? set->handle() : nullptr; };
        const OfxStatus status = plugin(0)->mainEntry(name, effect, handle(in), handle(out));
        Call::current = outer;
        begin_call();
        return status;
    }

  private:
    static const void* fetch_suite(OfxPropertySetHandle handle, const char* name, int version);

    HostOptions options_;
    PropertySet props_;
    OfxHost host_{};
    void* library_ = nullptr;
    bool loaded_ = false;
    std::unique_ptr<Effect> descriptor_;
    std::map<std::string, std::unique_ptr<Effect>> contexts_;
};

inline void add_rect(PropertySet& p, const std::string& name, const OfxRectD& r) {
    p.add(name, {r.x1, r.y1, r.x2, r.y2}, true);
}

inline OfxRectD rect_of(const PropertySet& p, const std::string& name) {
    return {p.double_at(name, 0), p.double_at(name, 1), p.double_at(name, 2), p.double_at(name, 3)};
}

inline PropertySet frame_arguments(double time, double scale) {
    PropertySet in;
    in.add(kOfxPropTime, {time});
    in.add(kOfxImageEffectPropRenderScale, {scale, scale});
    return in;
}

class Instance final : public Effect {
  public:
    Instance(Host& host, const std::string& context, Effect& descriptor) : host_(host) {
        props = descriptor.props;
        params.options = descriptor.params.options;
        props.add(kOfxImageEffectPropContext, {context});
        props.add(kOfxPropInstanceData, {static_cast<void*>(nullptr)}, true);
        props.add(kOfxPropParamSetNeedsSyncing, {1}, true);
        for (const auto& clip : descriptor.clips) clips.push_back(std::make_unique<Clip>(*clip));
        for (const auto& param : descriptor.params.all)
            params.all.push_back(std::make_unique<Param>(params, *param));
    }
    ~Instance() override { host_.action(kOfxActionDestroyInstance, this); }

    // With these values in place of the defaults; throws when the plug-in fails. Clips are connected
    // afterwards.
    using Values = std::map<std::string, Param::Content>;
    void create(const Values& saved) {
        for (const auto& [name, content] : saved) params.get(name).assign(content);
        const OfxStatus status =
            host_.action(kOfxActionCreateInstance, this, nullptr, nullptr, {.may_set_params = true});
        if (status != kOfxStatOK && status != kOfxStatReplyDefault) throw std::runtime_error("no instance");
        params.when_edited = [this](const std::string& name) {
            changed(kOfxTypeParameter, name, kOfxChangePluginEdited);
        };
    }
    // Connects a clip, or with null disconnects it, and tells the plug-in. Output takes depth and components.
    void connect(const std::string& name, const Source* source) {
        clip(name).connect(source != nullptr ? std::make_shared<Source>(*source) : nullptr);
        changed(kOfxTypeClip, name, kOfxChangeUserEdited);
    }
    // What the user does.
    void set(const std::string& name, std::vector<double> numbers) {
        params.get(name).assign({std::move(numbers), {}});
        changed(kOfxTypeParameter, name, kOfxChangeUserEdited);
    }
    void press(const std::string& button) {
        if (params.get(button).type != kOfxParamTypePushButton)
            throw std::logic_error(button + " is no button");
        changed(kOfxTypeParameter, button, kOfxChangeUserEdited);
    }
    void undo() {
        const ParamSet::Step step = params.undo.back();
        params.undo.pop_back();
        for (auto edit = step.rbegin(); edit != step.rend(); ++edit) edit->first->assign(edit->second);
        for (const auto& [param, content] : step)
            changed(kOfxTypeParameter, param->name, kOfxChangeUserEdited);
    }
    void go_to(double time) {
        services.time = time;
        for (const auto& param : params.all) {
            if (param->holds_value() && param->props.int_at(kOfxParamPropIsAnimating) != 0)
                changed(kOfxTypeParameter, param->name, kOfxChangeTime);
        }
    }
    double number(const std::string& name, std::size_t i = 0) const {
        return params.get(name).value().numbers.at(i);
    }
    std::string text(const std::string& name) const { return params.get(name).value().text; }
    // The values that a project file holds.
    Values saved() const {
        Values values;
        for (const auto& param : params.all) {
            if (param->saved()) values[param->name] = param->content();
        }
        return values;
    }

    // The clip that is passed through, or "none".
    std::string identity(double time = 0.0) {
        PropertySet in = frame_arguments(time, 1.0);
        PropertySet out;
        out.add_all({kOfxPropName}, std::string("none"));
        host_.action(kOfxImageEffectActionIsIdentity, this, &in, &out, {.per_frame = true});
        return out.string_at(kOfxPropName);
    }
    std::map<std::string, OfxRectD> regions_of_interest(const OfxRectD& region, double time = 0.0,
                                                        double scale = 1.0) {
        PropertySet in = frame_arguments(time, scale);
        add_rect(in, kOfxImageEffectPropRegionOfInterest, region);
        PropertySet out;
        for (const auto& clip : clips) {
            if (!clip->is_output()) add_rect(out, kOfxImageClipPropRoI_ + clip->name, region);
        }
        host_.action(kOfxImageEffectActionGetRegionsOfInterest, this, &in, &out, {.per_frame = true});
        std::map<std::string, OfxRectD> regions;
        for (const auto& clip : clips) {
            if (!clip->is_output()) regions[clip->name] = rect_of(out, kOfxImageClipPropRoI_ + clip->name);
        }
        return regions;
    }
    // Renders a window, or a field's rows of it, into the frame; asks for regions of interest first when the
    // host knows tiles.
    OfxStatus render(Frame& frame, const OfxRectI& w, double time = 0.0, double scale = 1.0,
                     const std::string& field = kOfxImageFieldNone) {
        return render_into(&frame, w, time, scale, field);
    }
    // The same for nobody to see.
    OfxStatus render_unseen(const OfxRectI& w, double time = 0.0) {
        return render_into(nullptr, w, time, 1.0, kOfxImageFieldNone);
    }
    // The window of a whole frame.
    OfxRectI window(double time = 0.0, double scale = 1.0) {
        PropertySet in = frame_arguments(time, scale);
        PropertySet out;
        add_rect(out, kOfxImageEffectPropRegionOfDefinition, clips[0]->rod());
        host_.action(kOfxImageEffectActionGetRegionOfDefinition, this, &in, &out, {.per_frame = true});
        return pixels_of(rect_of(out, kOfxImageEffectPropRegionOfDefinition), scale, aspect());
    }
    // A whole frame in one piece, within a sequence. Throws when an action fails.
    Frame render(double time = 0.0, double scale = 1.0) {
        const OfxRectI w = window(time, scale);
        const Clip& output = clip(kOfxImageEffectOutputClipName);
        Frame frame(w, channels_of(output.props.string_at(kOfxImageEffectPropComponents)));
        sequence(kOfxImageEffectActionBeginSequenceRender, time, scale);
        const OfxStatus status = render(frame, w, time, scale);
        sequence(kOfxImageEffectActionEndSequenceRender, time, scale);
        if (status != kOfxStatOK)
            throw std::runtime_error("the render gave status " + std::to_string(status));
        return frame;
    }
    void sequence(const char* action, double time = 0.0, double scale = 1.0) {
        PropertySet in = frame_arguments(time, scale);
        host_.action(action, this, &in, nullptr, {.per_frame = true});
    }

    PropertySet preferences;    // of clips; asked for anew after each change that they may depend on
    double viewer_scale = 1.0;  // at which the user presses buttons

  private:
    double aspect() const { return clip(kOfxImageEffectOutputClipName).aspect(); }
    OfxStatus render_into(Frame* frame, const OfxRectI& w, double time, double scale,
                          const std::string& field) {
        Call call{.per_frame = true, .may_fetch = true, .scale = scale, .window = w, .field = field};
        call.output = frame;
        if (params.options.tiles)
            call.regions = regions_of_interest(canonical_of(w, scale, aspect()), time, scale);
        PropertySet in = frame_arguments(time, scale);
        in.add(kOfxImageEffectPropFieldToRender, {field});
        in.add(kOfxImageEffectPropRenderWindow, {w.x1, w.y1, w.x2, w.y2});
        return host_.action(kOfxImageEffectActionRender, this, &in, nullptr, call);
    }
    void ask_preferences() {
        preferences = {};
        for (const auto& clip : clips) {
            if (clip->source() == nullptr && clip->props.int_at(kOfxImageClipPropOptional) == 0) return;
            preferences.add_all({(kOfxImageClipPropComponents_ + clip->name).c_str()}, kText);
        }
        preferences.add_all({kOfxImageEffectPropPreMultiplication}, kText);
        host_.action(kOfxImageEffectActionGetClipPreferences, this, nullptr, &preferences);
    }
    void changed(const std::string& type, const std::string& name, const char* reason) {
        PropertySet what = frame_arguments(services.time, viewer_scale);
        what.add(kOfxPropType, {type});
        what.add(kOfxPropName, {name});
        what.add(kOfxPropChangeReason, {std::string(reason)});
        const Call call{.may_set_params = true,
                        .may_fetch = reason == std::string(kOfxChangeUserEdited),
                        .scale = viewer_scale};
        const OfxStatus status = host_.action(kOfxActionInstanceChanged, this, &what, nullptr, call);
        if (status != kOfxStatOK && status != kOfxStatReplyDefault)
            note_fault("the change of " + name + " gave status " + std::to_string(status));
        const auto slaves = props.strings(kOfxImageEffectPropClipPreferencesSlaveParam);
        if (type == kOfxTypeClip || std::count(slaves.begin(), slaves.end(), name) != 0) ask_preferences();
    }

    Host& host_;
};

}  // namespace ofxtest
