#include "ofx/host/Effect.h"

namespace ofxtest {

namespace {

Effect& effect_of(OfxImageEffectHandle handle) {
    return *reinterpret_cast<Effect*>(handle);
}

Clip& clip_of(OfxImageClipHandle handle) {
    return *reinterpret_cast<Clip*>(handle);
}

OfxStatus get_properties(OfxImageEffectHandle effect, OfxPropertySetHandle* props) {
    begin_call();
    *props = effect_of(effect).props.handle();
    return kOfxStatOK;
}

OfxStatus get_params(OfxImageEffectHandle effect, OfxParamSetHandle* params) {
    begin_call();
    *params = effect_of(effect).params.handle();
    return kOfxStatOK;
}

OfxStatus define_clip(OfxImageEffectHandle handle, const char* name, OfxPropertySetHandle* props) {
    begin_call();
    Effect& effect = effect_of(handle);
    if (!effect.params.describing || effect.find_clip(name) != nullptr) {
        note_fault(std::string("defines a clip twice, or outside a describe action: ") + name);
        return kOfxStatErrExists;
    }
    Clip& clip = *effect.clips.emplace_back(std::make_unique<Clip>(name));
    if (props != nullptr) *props = clip.props.handle();
    return kOfxStatOK;
}

OfxStatus clip_handle(OfxImageEffectHandle handle, const char* name, OfxImageClipHandle* clip,
                      OfxPropertySetHandle* props) {
    begin_call();
    Clip* found = effect_of(handle).find_clip(name);
    if (found == nullptr) return kOfxStatErrUnknown;
    *clip = reinterpret_cast<OfxImageClipHandle>(found);
    if (props != nullptr) *props = found->props.handle();
    return kOfxStatOK;
}

OfxStatus get_image(OfxImageClipHandle clip, OfxTime time, const OfxRectD* region,
                    OfxPropertySetHandle* image) {
    begin_call();
    return clip_of(clip).fetch(time, region, image);
}

OfxStatus release_image(OfxPropertySetHandle handle) {
    begin_call();
    PropertySet* set = PropertySet::from(handle);
    if (set == nullptr || !set->has(kOfxImagePropData)) {
        note_fault("releases what is no image");
        return kOfxStatErrBadHandle;
    }
    auto* image = static_cast<Image*>(set);
    const Call* call = Call::current();
    if (image->is_output && call != nullptr && call->output != nullptr) image->collect(*call, *call->output);
    delete image;
    --Image::held;
    return kOfxStatOK;
}

OfxStatus clip_rod(OfxImageClipHandle handle, OfxTime, OfxRectD* bounds) {
    begin_call();
    const Clip& clip = clip_of(handle);
    if (clip.source() == nullptr) return kOfxStatFailed;
    *bounds = clip.rod();
    return kOfxStatOK;
}

int abort_wanted(OfxImageEffectHandle handle) {
    begin_call();
    Effect& effect = effect_of(handle);
    const int polls = effect.polls.fetch_add(1, std::memory_order_relaxed) + 1;
    const int after = effect.abort_after.load(std::memory_order_relaxed);
    return after >= 0 && polls > after ? 1 : 0;
}

}  // namespace

const OfxImageEffectSuiteV1& image_effect_suite() {
    static const OfxImageEffectSuiteV1 suite = [] {
        OfxImageEffectSuiteV1 s{};
        s.getPropertySet = get_properties;
        s.getParamSet = get_params;
        s.clipDefine = define_clip;
        s.clipGetHandle = clip_handle;
        s.clipGetImage = get_image;
        s.clipReleaseImage = release_image;
        s.clipGetRegionOfDefinition = clip_rod;
        s.abort = abort_wanted;
        return s;
    }();
    return suite;
}

}  // namespace ofxtest
