#include <algorithm>
#include <stdexcept>

#include "ofx/host/Host.h"
#include "ofx/host/Services.h"

namespace ofxtest {

namespace {

constexpr auto kPlugin = PropertySet::kPluginSets;

void add_rect(PropertySet& p, const std::string& name, const OfxRectD& r) {
    p.add(name, {r.x1, r.y1, r.x2, r.y2}, kPlugin);
}

OfxRectD rect_of(const PropertySet& p, const std::string& name) {
    return {p.double_at(name, 0), p.double_at(name, 1), p.double_at(name, 2), p.double_at(name, 3)};
}

PropertySet frame_arguments(double time, double scale) {
    PropertySet in;
    in.add(kOfxPropTime, {time});
    in.add(kOfxImageEffectPropRenderScale, {scale, scale});
    return in;
}

PropertySet window_arguments(double time, double scale, const OfxRectI& w, const std::string& field) {
    PropertySet in = frame_arguments(time, scale);
    in.add(kOfxImageEffectPropFieldToRender, {field});
    in.add(kOfxImageEffectPropRenderWindow, {w.x1, w.y1, w.x2, w.y2});
    return in;
}

}  // namespace

Instance::Instance(Host& host, const std::string& context, Effect& descriptor) : host_(host) {
    props = descriptor.props;
    props.add(kOfxImageEffectPropContext, {context});
    props.add(kOfxPropInstanceData, {static_cast<void*>(nullptr)}, kPlugin);
    props.add(kOfxPropParamSetNeedsSyncing, {1}, kPlugin);
    for (const auto& clip : descriptor.clips) clips.push_back(std::make_unique<Clip>(*clip));
    for (const auto& param : descriptor.params.all()) params.add(std::make_unique<Param>(params, *param));
    params.when_edited = [this](Param& param) {
        if (created_) changed(kOfxTypeParameter, param.name(), kOfxChangePluginEdited);
    };
}

OfxStatus Instance::create() {
    const OfxStatus status =
        host_.action(kOfxActionCreateInstance, this, nullptr, nullptr, {.may_set_params = true});
    created_ = true;
    return status;
}

void Instance::changed(const std::string& type, const std::string& name, const char* reason) {
    PropertySet in;
    in.add(kOfxPropChangeReason, {std::string(reason)});
    Call call{.may_set_params = true, .scale = viewer_scale};
    host_.action(kOfxActionBeginInstanceChanged, this, &in, nullptr, call);
    PropertySet what = frame_arguments(services().time, viewer_scale);
    what.add(kOfxPropType, {type});
    what.add(kOfxPropName, {name});
    what.add(kOfxPropChangeReason, {std::string(reason)});
    call.may_fetch = reason == std::string(kOfxChangeUserEdited);
    const OfxStatus status = host_.action(kOfxActionInstanceChanged, this, &what, nullptr, call);
    if (status != kOfxStatOK && status != kOfxStatReplyDefault)
        note_fault("the change of " + name + " gave status " + std::to_string(status));
    call.may_fetch = false;
    host_.action(kOfxActionEndInstanceChanged, this, &in, nullptr, call);
    const auto slaves = props.strings(kOfxImageEffectPropClipPreferencesSlaveParam);
    if (type == kOfxTypeClip || std::count(slaves.begin(), slaves.end(), name) != 0) ask_preferences();
}

void Instance::connect(const std::string& name, const Source* source) {
    clip(name).connect(source != nullptr ? std::make_shared<Source>(*source) : nullptr);
    changed(kOfxTypeClip, name, kOfxChangeUserEdited);
}

void Instance::set(const std::string& name, std::vector<double> numbers) {
    params.get(name).assign({std::move(numbers), {}});
    changed(kOfxTypeParameter, name, kOfxChangeUserEdited);
}

void Instance::press(const std::string& button) {
    if (params.get(button).type() != kOfxParamTypePushButton)
        throw std::logic_error(button + " is no button");
    changed(kOfxTypeParameter, button, kOfxChangeUserEdited);
}

void Instance::undo() {
    const ParamSet::Step step = params.undo.back();
    params.undo.pop_back();
    for (auto edit = step.rbegin(); edit != step.rend(); ++edit) edit->first->assign(edit->second);
    for (const auto& [param, content] : step) changed(kOfxTypeParameter, param->name(), kOfxChangeUserEdited);
}

void Instance::go_to(double time) {
    services().time = time;
    for (const auto& param : params.all()) {
        if (param->holds_value() && param->props.int_at(kOfxParamPropIsAnimating) != 0)
            changed(kOfxTypeParameter, param->name(), kOfxChangeTime);
    }
}

Host::Values Instance::saved() const {
    Host::Values values;
    for (const auto& param : params.all()) {
        if (param->holds_value()) values[param->name()] = param->content();
    }
    return values;
}

OfxRectD Instance::region_of_definition(double time, double scale) {
    PropertySet in = frame_arguments(time, scale);
    PropertySet out;
    for (const auto& clip : clips) {
        if (clip->is_output() || clip->props.int_at(kOfxImageClipPropOptional) != 0) continue;
        add_rect(out, kOfxImageEffectPropRegionOfDefinition, clip->rod());
    }
    host_.action(kOfxImageEffectActionGetRegionOfDefinition, this, &in, &out,
                 {.per_frame = true, .scale = scale});
    return rect_of(out, kOfxImageEffectPropRegionOfDefinition);
}

std::optional<std::string> Instance::identity(const OfxRectI& w, double time, double scale) {
    PropertySet in = window_arguments(time, scale, w, kOfxImageFieldNone);
    PropertySet out;
    out.add(kOfxPropName, {std::string()}, kPlugin);
    out.add(kOfxPropTime, {time}, kPlugin);
    const Call call{.per_frame = true, .scale = scale};
    if (host_.action(kOfxImageEffectActionIsIdentity, this, &in, &out, call) != kOfxStatOK)
        return std::nullopt;
    return out.string_at(kOfxPropName);
}

std::map<std::string, OfxRectD> Instance::regions_of_interest(const OfxRectD& region, double time,
                                                              double scale) {
    PropertySet in = frame_arguments(time, scale);
    add_rect(in, kOfxImageEffectPropRegionOfInterest, region);
    PropertySet out;
    for (const auto& clip : clips) {
        if (!clip->is_output()) add_rect(out, kOfxImageClipPropRoI_ + clip->name(), region);
    }
    host_.action(kOfxImageEffectActionGetRegionsOfInterest, this, &in, &out,
                 {.per_frame = true, .scale = scale});
    std::map<std::string, OfxRectD> regions;
    for (const auto& clip : clips) {
        if (!clip->is_output()) regions[clip->name()] = rect_of(out, kOfxImageClipPropRoI_ + clip->name());
    }
    return regions;
}

// Not before every clip that has to be connected is.
void Instance::ask_preferences() {
    preferences = {};
    for (const auto& clip : clips) {
        if (clip->source() == nullptr && clip->props.int_at(kOfxImageClipPropOptional) == 0) return;
        preferences.add(kOfxImageClipPropComponents_ + clip->name(),
                        {clip->props.string_at(kOfxImageEffectPropComponents)}, kPlugin);
    }
    preferences.add(kOfxImageEffectPropPreMultiplication, {std::string()}, kPlugin);
    host_.action(kOfxImageEffectActionGetClipPreferences, this, nullptr, &preferences);
}

OfxStatus Instance::render(Frame& frame, const OfxRectI& w, double time, double scale,
                           const std::string& field) {
    Call call{.per_frame = true, .may_fetch = true, .scale = scale, .window = w, .field = field};
    call.output = &frame;
    if (host_.options().tiles) {
        call.regions = regions_of_interest(canonical_of(w, scale, aspect()), time, scale);
    }
    PropertySet in = window_arguments(time, scale, w, field);
    return host_.action(kOfxImageEffectActionRender, this, &in, nullptr, call);
}

OfxRectI Instance::window(double time, double scale) {
    return pixels_of(region_of_definition(time, scale), scale, aspect());
}

void Instance::sequence(const char* action, double time, double scale) {
    PropertySet in = frame_arguments(time, scale);
    host_.action(action, this, &in, nullptr, {.per_frame = true, .scale = scale});
}

Frame Instance::render(double time, double scale) {
    const OfxRectI w = window(time, scale);
    const Clip& output = clip(kOfxImageEffectOutputClipName);
    Frame frame(w, channels_of(output.props.string_at(kOfxImageEffectPropComponents)));
    sequence(kOfxImageEffectActionBeginSequenceRender, time, scale);
    const OfxStatus status = render(frame, w, time, scale);
    sequence(kOfxImageEffectActionEndSequenceRender, time, scale);
    if (status != kOfxStatOK) throw std::runtime_error("the render gave status " + std::to_string(status));
    return frame;
}

}  // namespace ofxtest
