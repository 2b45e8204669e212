#include "ofx/host/Host.h"

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "ofx/host/Services.h"

namespace ofxtest {

namespace {

constexpr auto kPlugin = PropertySet::kPluginSets;

void add_descriptor_properties(PropertySet& p) {
    for (const char* text : {kOfxPropLabel, kOfxPropShortLabel, kOfxPropLongLabel, kOfxPropVersionLabel,
                             kOfxPropPluginDescription, kOfxImageEffectPluginPropGrouping,
                             kOfxImageEffectPluginRenderThreadSafety})
        p.add(text, {std::string()}, kPlugin);
    p.add(kOfxPropIcon, {std::string(), std::string()}, kPlugin);
    p.add_list(kOfxPropVersion, 0, kPlugin);
    for (const char* list : {kOfxImageEffectPropSupportedContexts, kOfxImageEffectPropSupportedPixelDepths,
                             kOfxImageEffectPropClipPreferencesSlaveParam, kOfxPluginPropParamPageOrder})
        p.add_list(list, std::string(), kPlugin);
    for (const char* flag :
         {kOfxImageEffectPluginPropHostFrameThreading, kOfxImageEffectPropSupportsTiles,
          kOfxImageEffectPropSupportsMultiResolution, kOfxImageEffectPluginPropFieldRenderTwiceAlways,
          kOfxImageEffectPluginPropSingleInstance, kOfxImageEffectPropTemporalClipAccess,
          kOfxImageEffectPropSupportsMultipleClipDepths, kOfxImageEffectPropSupportsMultipleClipPARs})
        p.add(flag, {1}, kPlugin);
}

}  // namespace

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
    const auto symbol = [&]<class F>(F*& function, const char* what) {
        function = reinterpret_cast<F*>(dlsym(library_, what));
        if (function != nullptr) return;
        dlclose(library_);
        throw std::runtime_error(std::string("the binary lacks ") + what);
    };
    OfxStatus (*set_host)(const OfxHost*) = nullptr;
    int (*number)() = nullptr;
    symbol(set_host, "OfxSetHost");
    symbol(number, "OfxGetNumberOfPlugins");
    symbol(get_plugin_, "OfxGetPlugin");
    set_host(&host_);
    count_ = number();
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
        {"OfxParameterSuite 1", &parameter_suite()},      {"OfxMessageSuite 1", &message_suite_1()},
        {"OfxMultiThreadSuite 1", &multi_thread_suite()}, {"OfxMessageSuite 2", &message_suite_2()}};
    begin_call();
    // Of the host only its property set comes along: what it lacks is noted there.
    const PropertySet* props = PropertySet::from(handle);
    if (props == nullptr) return nullptr;
    const std::string key = std::string(name) + ' ' + std::to_string(version);
    if (props->has("missing " + key)) return nullptr;
    const auto found = suites.find(key);
    return found != suites.end() ? found->second : nullptr;
}

OfxStatus Host::action(const char* name, Effect* effect, PropertySet* in, PropertySet* out,
                       const Call& call) {
    const Call::Scope scope(&call);
    const OfxStatus status =
        plugin_->mainEntry(name, effect != nullptr ? effect->handle() : nullptr,
                           in != nullptr ? in->handle() : nullptr, out != nullptr ? out->handle() : nullptr);
    begin_call();
    return status;
}

OfxStatus Host::load() {
    for (const std::string& suite : options_.missing) props_.add("missing " + suite, {1});
    OfxStatus status = action(kOfxActionLoad, nullptr);
    loaded_ = loaded_ || status == kOfxStatOK;
    if (status != kOfxStatOK) return status;
    descriptor_ = std::make_unique<Effect>();
    add_descriptor_properties(descriptor_->props);
    status = action(kOfxActionDescribe, descriptor_.get());
    if (status != kOfxStatOK) return status;
    contexts_.clear();
    const std::vector<std::string> theirs = descriptor_->props.strings(kOfxImageEffectPropSupportedContexts);
    for (const std::string& context : options_.contexts) {
        if (std::find(theirs.begin(), theirs.end(), context) == theirs.end()) continue;
        auto effect = std::make_unique<Effect>();
        effect->props = descriptor_->props;
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
