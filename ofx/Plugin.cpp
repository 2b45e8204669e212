// The entry points of the module: what it exports, and the actions that a host calls.
#include <string>
#include <string_view>

#include "Describe.h"
#include "host/Answer.h"
#include "instance/Instance.h"

namespace veloxa::ofx {

namespace {

OfxStatus dispatch(std::string_view action, OfxImageEffectHandle effect, OfxPropertySetHandle in,
                   OfxPropertySetHandle out) {
    struct Entry {
        std::string_view action;
        OfxStatus (Instance::*handler)(OfxPropertySetHandle, OfxPropertySetHandle);
    };
    static constexpr Entry kEntries[]{
        {kOfxImageEffectActionRender, &Instance::render},
        {kOfxImageEffectActionBeginSequenceRender, &Instance::begin_sequence},
        {kOfxImageEffectActionEndSequenceRender, &Instance::end_sequence},
        {kOfxImageEffectActionGetRegionOfDefinition, &Instance::region_of_definition},
        {kOfxImageEffectActionGetRegionsOfInterest, &Instance::regions_of_interest},
        {kOfxImageEffectActionIsIdentity, &Instance::is_identity},
        {kOfxImageEffectActionGetClipPreferences, &Instance::clip_preferences},
        {kOfxActionInstanceChanged, &Instance::changed},
        {kOfxActionPurgeCaches, &Instance::purge_caches},
    };
    for (const Entry& entry : kEntries) {
        if (entry.action == action) return (Instance::of(effect).*entry.handler)(in, out);
    }
    if (action == kOfxActionLoad) {
        load();
    } else if (action == kOfxActionDescribe) {
        describe(effect);
    } else if (action == kOfxImageEffectActionDescribeInContext) {
        describe_in_context(effect, in);
    } else if (action == kOfxActionCreateInstance) {
        Instance::create(effect);
    } else if (action == kOfxActionDestroyInstance) {
        Instance::destroy(effect);
    } else if (action != kOfxActionUnload) {
        return kOfxStatReplyDefault;
    }
    return kOfxStatOK;
}

OfxStatus main_entry(const char* action, const void* handle, OfxPropertySetHandle in,
                     OfxPropertySetHandle out) noexcept {
    // The interface hands effects over as const.
    const auto effect = static_cast<OfxImageEffectHandle>(const_cast<void*>(handle));
    return answer([&] { return dispatch(action, effect, in, out); },
                  [&](const char* text) {
                      // Of renders the instance tells.
                      if (std::string_view(action) != kOfxImageEffectActionRender) {
                          tell(effect, kOfxMessageError, text);
                      }
                  });
}

void accept_host(OfxHost* host) {
    set_host(host);
}

OfxPlugin plugin{kOfxImageEffectPluginApi,
                 kOfxImageEffectPluginApiVersion,
                 VELOXA_PLUGIN_ID,
                 VELOXA_VERSION_MAJOR,
                 VELOXA_VERSION_MINOR,
                 accept_host,
                 main_entry};

}  // namespace

}  // namespace veloxa::ofx

extern "C" {

OfxExport int OfxGetNumberOfPlugins(void) {
    return 1;
}

OfxExport OfxPlugin* OfxGetPlugin(int nth) {
    return nth == 0 ? &veloxa::ofx::plugin : nullptr;
}

// The plug-in's own setHost follows.
OfxExport OfxStatus OfxSetHost(const OfxHost* /*host*/) {
    return kOfxStatOK;
}
}
