#include "ofx/host/Host.h"

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace ofxtest {

Host::Host(const std::string& bundle, HostOptions options) : options_(std::move(options)) {
    for (const char* yes :
         {kOfxParamHostPropSupportsChoiceAnimation, kOfxParamHostPropSupportsBooleanAnimation}) {
        if (!options_.bare) props_.add(yes, {1});
    }
    host_ = {props_.handle(), fetch_suite};
    const std::string name = std::filesystem::path(bundle).stem().stem().string();
    const std::string binary = bundle + "/Contents/Linux-x86-64/" + name + ".ofx";
    library_ = dlopen(binary.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library_ == nullptr) throw std::runtime_error(dlerror());
    const auto symbol = [&](const char* what) {
        if (void* found = dlsym(library_, what)) return found;
        throw std::runtime_error(std::string("the binary lacks ") + what);
    };
    get_plugin_ = reinterpret_cast<OfxPlugin* (*)(int)>(symbol("OfxGetPlugin"));
    reinterpret_cast<OfxStatus (*)(const OfxHost*)>(symbol("OfxSetHost"))(&host_);
    count_ = reinterpret_cast<int (*)()>(symbol("OfxGetNumberOfPlugins"))();
    plugin_ = get_plugin_(0);
    plugin_->setHost(&host_);
}

Host::~Host() {
    if (loaded_) action(kOfxActionUnload, nullptr);
    dlclose(library_);
}

const void* Host::fetch_suite(OfxPropertySetHandle handle, const char* name, int version) {
    static const std::map<std::string, const void*> suites{
        {"OfxPropertySuite 1", &property_suite()},        {"OfxImageEffectSuite 1", &image_effect_suite()},
        {"OfxParameterSuite 1", &parameter_suite()},      {"OfxMessageSuite 1", &message_suite()},
        {"OfxMultiThreadSuite 1", &multi_thread_suite()}, {"OfxMessageSuite 2", &message_suite()}};
    begin_call();
    // Of the host only its property set comes along: what it lacks is noted there.
    const PropertySet* props = PropertySet::from(handle);
    const std::string key = std::string(name) + ' ' + std::to_string(version);
    const auto found = suites.find(key);
    return props == nullptr || props->has("missing " + key) || found == suites.end() ? nullptr
                                                                                     : found->second;
}

OfxStatus Host::action(const char* name, Effect* effect, PropertySet* in, PropertySet* out,
                       const Call& call) {
    const Call* outer = std::exchange(Call::current, &call);
    const auto handle = [](PropertySet* set) { return set != nullptr ? set->handle() : nullptr; };
    const OfxStatus status = plugin_->mainEntry(name, effect, handle(in), handle(out));
    Call::current = outer;
    begin_call();
    return status;
}

OfxStatus Host::load() {
    for (const std::string& suite : options_.missing) props_.add("missing " + suite, {1});
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
    p.add_lists({kOfxPropVersion}, 0);
    p.add_lists({kOfxImageEffectPropSupportedContexts, kOfxImageEffectPropSupportedPixelDepths,
                 kOfxImageEffectPropClipPreferencesSlaveParam, kOfxPluginPropParamPageOrder},
                kText);
    p.add_all({kOfxImageEffectPluginPropHostFrameThreading, kOfxImageEffectPropSupportsTiles,
               kOfxImageEffectPropSupportsMultiResolution, kOfxImageEffectPluginPropFieldRenderTwiceAlways,
               kOfxImageEffectPluginPropSingleInstance, kOfxImageEffectPropTemporalClipAccess,
               kOfxImageEffectPropSupportsMultipleClipDepths, kOfxImageEffectPropSupportsMultipleClipPARs},
              1);
    status = action(kOfxActionDescribe, descriptor_.get());
    if (status != kOfxStatOK) return status;
    contexts_.clear();
    const std::vector<std::string> theirs = p.strings(kOfxImageEffectPropSupportedContexts);
    for (const std::string& context : options_.contexts) {
        if (std::find(theirs.begin(), theirs.end(), context) == theirs.end()) continue;
        auto effect = std::make_unique<Effect>();
        effect->props = p;
        effect->params.refused_types = options_.refused_types;
        effect->params.refused_children = options_.refused_children;
        effect->params.describing = true;
        PropertySet in;
        in.add(kOfxImageEffectPropContext, {context});
        status = action(kOfxImageEffectActionDescribeInContext, effect.get(), &in);
        if (status != kOfxStatOK) return status;
        effect->params.describing = false;
        contexts_[context] = std::move(effect);
    }
    return kOfxStatOK;
}

std::unique_ptr<Instance> Host::create(const std::string& context, const Values& saved) {
    auto instance = std::make_unique<Instance>(*this, context, *contexts_.at(context));
    for (const auto& [name, content] : saved) {
        if (Param* param = instance->params.find(name)) param->assign(content);
    }
    const OfxStatus status = instance->create();
    return status == kOfxStatOK || status == kOfxStatReplyDefault ? std::move(instance) : nullptr;
}

}  // namespace ofxtest
