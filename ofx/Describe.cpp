#include "Describe.h"

#include "host/Host.h"
#include "host/Properties.h"
#include "images/Clips.h"
#include "instance/Node.h"
#include "overlay/OverlayEntry.h"
#include "parameters/OwnParameters.h"

namespace veloxa::ofx {

namespace {

Properties define_clip(OfxImageEffectHandle effect, const char* name, bool optional) {
    OfxPropertySetHandle set = nullptr;
    check(suites().effect->clipDefine(effect, name, &set));
    const Properties clip(set);
    clip.set(kOfxPropLabel, name);
    clip.set(kOfxImageClipPropOptional, optional ? 1 : 0);
    clip.set(kOfxImageEffectPropSupportsTiles, 1);
    clip.set(kOfxImageEffectPropTemporalClipAccess, 0);
    // What looks up and down needs a row between each two of a field.
    clip.set(kOfxImageClipPropFieldExtraction, kOfxImageFieldDoubled);
    return clip;
}

constexpr std::initializer_list<const char*> kColour{kOfxImageComponentRGBA, kOfxImageComponentRGB};

// With all five inputs the output may have an alpha whatever the foreground has. Where the output follows the
// source, only a source with alpha gives one.
void define_general_clips(OfxImageEffectHandle effect) {
    for (const InputClip& input : kInputClips) {
        const Properties clip = define_clip(effect, input.name, &input != kInputClips.data());
        if (input.role == ClipImage::Role::kMatte) {
            clip.set(kOfxImageClipPropIsMask, 1);
            clip.set_all<const char*>(
                kOfxImageEffectPropSupportedComponents,
                {kOfxImageComponentAlpha, kOfxImageComponentRGBA, kOfxImageComponentRGB});
        } else {
            clip.set_all(kOfxImageEffectPropSupportedComponents, kColour);
        }
    }
    define_clip(effect, kOfxImageEffectOutputClipName, false)
        .set_all(kOfxImageEffectPropSupportedComponents, kColour);
}

void define_filter_clips(OfxImageEffectHandle effect) {
    for (const char* const name : {kOfxImageEffectSimpleSourceClipName, kOfxImageEffectOutputClipName}) {
        define_clip(effect, name, false).set(kOfxImageEffectPropSupportedComponents, kOfxImageComponentRGBA);
    }
}

}  // namespace

void describe(OfxImageEffectHandle effect) {
    OfxPropertySetHandle set = nullptr;
    check(suites().effect->getPropertySet(effect, &set));
    const Properties p(set);
    p.set(kOfxPropLabel, "Veloxa");
    p.set(kOfxPropShortLabel, "Veloxa");
    p.set(kOfxPropLongLabel, "Veloxa Keyer");
    p.set(kOfxImageEffectPluginPropGrouping, "Keyer");
    p.set(kOfxPropPluginDescription, Node().image().help_text());
    p.set_all(kOfxPropVersion, {VELOXA_VERSION_MAJOR, VELOXA_VERSION_MINOR, VELOXA_VERSION_PATCH});
    p.set(kOfxPropVersionLabel, VELOXA_VERSION);
    p.set_all<const char*>(kOfxPropIcon, {"", VELOXA_PLUGIN_ID ".png"});

    p.set_all<const char*>(kOfxImageEffectPropSupportedContexts,
                           {kOfxImageEffectContextGeneral, kOfxImageEffectContextFilter});
    p.set_all<const char*>(kOfxImageEffectPropSupportedPixelDepths,
                           {kOfxBitDepthFloat, kOfxBitDepthShort, kOfxBitDepthByte, kOfxBitDepthHalf});
    p.set(kOfxImageEffectPluginPropSingleInstance, 0);
    // Frames and tiles may come at once; a whole frame that stages need is made anew for each that does, so
    // the host need not cut one frame up for the sake of threads: a render takes them itself.
    p.set(kOfxImageEffectPluginRenderThreadSafety, kOfxImageEffectRenderFullySafe);
    p.set(kOfxImageEffectPluginPropHostFrameThreading, 0);
    p.set(kOfxImageEffectPropSupportsTiles, 1);
    p.set(kOfxImageEffectPropSupportsMultiResolution, 1);
    p.set(kOfxImageEffectPropTemporalClipAccess, 0);
    p.set(kOfxImageEffectPropSupportsMultipleClipDepths, 1);
    p.set(kOfxImageEffectPropSupportsMultipleClipPARs, 0);
    p.set(kOfxImageEffectPluginPropFieldRenderTwiceAlways, 0);
    p.set_all<const char*>(kOfxImageEffectPropClipPreferencesSlaveParam, {kOutputMode.data(), kView});
    // The same for both: whoever brings something to draw with says so at each drawing.
    if (host_has_overlays()) {
        void* const entry = reinterpret_cast<void*>(&overlay_entry);
        p.set_pointer(kOfxImageEffectPluginPropOverlayInteractV1, entry);
        if (suites().draw != nullptr) p.set_pointer(kOfxImageEffectPluginPropOverlayInteractV2, entry);
    }
}

void describe_in_context(OfxImageEffectHandle effect, OfxPropertySetHandle arguments) {
    const std::string context = Properties(arguments).text(kOfxImageEffectPropContext);
    if (context == kOfxImageEffectContextGeneral) {
        define_general_clips(effect);
    } else if (context == kOfxImageEffectContextFilter) {
        define_filter_clips(effect);
    } else {
        throw Failure(kOfxStatErrUnsupported);
    }
    OfxParamSetHandle parameters = nullptr;
    check(suites().effect->getParamSet(effect, &parameters));
    const Node node;
    describe_parameters(parameters, node.list(), node.stages());
}

}  // namespace veloxa::ofx
