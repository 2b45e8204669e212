// The suites that the plug-in calls.
#include <cstdarg>
#include <deque>
#include <thread>

#include "abi/OfxMessage.h"
#include "abi/OfxMultiThread.h"
#include "ofx/host/Interact.h"

namespace ofxtest {

namespace {

thread_local std::deque<std::string> lent;

// A string as a host returns it: spoilt by the next call of any function of the host on the same thread.
char* lend_string(std::string text) {
    return lent.emplace_back(std::move(text)).data();
}

// The object behind a handle, as the type that is asked for.
struct Behind {
    template <class T>
    operator T&() const {
        return *static_cast<T*>(handle);
    }
    void* handle;
};

// What asks for an object by name replies.
template <class T, class Handle>
OfxStatus hand_out(T* found, Handle* handle, OfxPropertySetHandle* props) {
    if (found == nullptr) return kOfxStatErrUnknown;
    if (handle != nullptr) *handle = reinterpret_cast<Handle>(found);
    if (props != nullptr) *props = found->props.handle();
    return kOfxStatOK;
}

// A function of a suite, which takes a handle for the object.
template <auto kFunction>
constexpr auto entered = [](auto handle, auto... arguments) {
    begin_call();
    return kFunction(Behind{handle}, arguments...);
};

template <class Stored, class T = Stored>
OfxStatus set_one(PropertySet& properties, const char* name, int index, T value) {
    return properties.set(name, index, Stored(value));
}

OfxStatus set_doubles(PropertySet& properties, const char* name, int count, const double* values) {
    OfxStatus status = kOfxStatOK;
    for (int i = 0; i < count && status == kOfxStatOK; ++i)
        status = set_one<double>(properties, name, i, values[i]);
    return status;
}

template <class Stored, class T = Stored>
OfxStatus get_one(PropertySet& properties, const char* name, int index, T* out) {
    Value value = Stored{};
    const OfxStatus status = properties.get(name, index, value);
    if (status != kOfxStatOK) return status;
    if constexpr (std::is_same_v<T, char*>) {
        *out = lend_string(std::get<std::string>(value));
    } else {
        *out = std::get<T>(value);
    }
    return kOfxStatOK;
}

OfxStatus define(ParamSet& set, const char* type, const char* name, OfxPropertySetHandle* props) {
    if (!Call::now().may_define) note_fault(std::string("defines outside a describe action: ") + name);
    if (set.options.refused_types.count(type) != 0) return kOfxStatErrUnsupported;
    if (set.find(name) != nullptr)
        return note_fault(std::string("defines twice: ") + name, kOfxStatErrExists);
    if (Param::kDimensions.count(type) == 0) return kOfxStatErrUnknown;
    auto param = std::make_unique<Param>(set, type, name);
    if (param->type == kOfxParamTypePage) param->props.refused = set.options.refused_children;
    *props = set.all.emplace_back(std::move(param))->props.handle();
    return kOfxStatOK;
}

OfxStatus find_param(ParamSet& set, const char* name, OfxParamHandle* param, OfxPropertySetHandle* props) {
    return hand_out(set.find(name), param, props);
}

OfxStatus give(Param& param, const OfxTime* time, std::va_list out) {
    if (time == nullptr && Call::now().per_frame) note_fault("reads a value without the frame's time");
    if (!param.holds_value())
        return note_fault("reads a parameter without a value: " + param.name, kOfxStatErrUnsupported);
    const Param::Content content = param.value(time != nullptr ? *time : services.time);
    if (param.is_text()) {
        if (Call::now().per_frame) note_fault("reads a text that its user may be editing");
        *va_arg(out, char**) = lend_string(content.text);
    }
    for (const double number : content.numbers) {
        if (param.is_int()) {
            *va_arg(out, int*) = static_cast<int>(number);
        } else {
            *va_arg(out, double*) = number;
        }
    }
    return kOfxStatOK;
}

// A step to undo of its own, or part of the block that the plug-in opened.
void remember(Param& param) {
    if (param.props.int_at(kOfxParamPropCanUndo) == 0) return;
    ParamSet& set = param.owner;
    if (set.open_blocks == 0) set.undo.emplace_back();
    set.undo.back().emplace_back(&param, param.content());
}

OfxStatus take(Param& param, const OfxTime* key, std::va_list in) {
    if (!Call::now().may_set_params) note_fault("sets a parameter at the wrong time: " + param.name);
    if (!param.holds_value())
        return note_fault("sets a parameter without a value: " + param.name, kOfxStatErrUnsupported);
    Param::Content content;
    if (param.is_text()) content.text = va_arg(in, const char*);
    for (int i = 0; i < param.dimension && !param.is_text(); ++i)
        content.numbers.push_back(param.is_int() ? va_arg(in, int) : va_arg(in, double));
    remember(param);
    if (key != nullptr) {
        param.set_keys({{*key, content.numbers}});
    } else {
        param.assign(content);
    }
    if (param.owner.when_edited) param.owner.when_edited(param.name);
    return kOfxStatOK;
}

OfxStatus delete_keys(Param& param) {
    if (!Call::now().may_set_params) note_fault("deletes keys at the wrong time: " + param.name);
    remember(param);
    param.assign(param.value(services.time));
    return kOfxStatOK;
}

// Gives or takes the values between a function's own arguments and its end.
template <auto kDo>
OfxStatus values(OfxParamHandle handle, ...) {
    std::va_list list;
    va_start(list, handle);
    const OfxStatus status = entered<kDo>(handle, nullptr, list);
    va_end(list);
    return status;
}

template <auto kDo>
OfxStatus values_at(OfxParamHandle handle, OfxTime time, ...) {
    std::va_list list;
    va_start(list, time);
    const OfxStatus status = entered<kDo>(handle, &time, list);
    va_end(list);
    return status;
}

OfxStatus edit_begin(ParamSet& set, const char*) {
    if (set.open_blocks++ == 0) set.undo.emplace_back();
    return kOfxStatOK;
}

OfxStatus edit_end(ParamSet& set) {
    if (set.open_blocks == 0) return note_fault("ends an edit that was not begun");
    if (--set.open_blocks == 0 && set.undo.back().empty()) set.undo.pop_back();
    return kOfxStatOK;
}

template <class Owner>
OfxStatus properties(Owner& owner, OfxPropertySetHandle* props) {
    *props = owner.props.handle();
    return kOfxStatOK;
}

OfxStatus get_params(Effect& effect, OfxParamSetHandle* params) {
    *params = reinterpret_cast<OfxParamSetHandle>(&effect.params);
    return kOfxStatOK;
}

OfxStatus define_clip(Effect& effect, const char* name, OfxPropertySetHandle* props) {
    if (!Call::now().may_define || effect.find_clip(name) != nullptr)
        return note_fault(std::string("defines a clip twice, or outside a describe action: ") + name,
                          kOfxStatErrExists);
    *props = effect.clips.emplace_back(std::make_unique<Clip>(name))->props.handle();
    return kOfxStatOK;
}

OfxStatus find_clip(Effect& effect, const char* name, OfxImageClipHandle* clip, OfxPropertySetHandle* props) {
    return hand_out(effect.find_clip(name), clip, props);
}

OfxStatus get_image(Clip& clip, OfxTime time, const OfxRectD* region, OfxPropertySetHandle* image) {
    const Source* source = clip.source();
    const Call& call = Call::now();
    if (call.refuses_images) return kOfxStatFailed;
    if (!call.may_fetch) return note_fault("fetches an image at the wrong time: " + clip.name);
    if (source == nullptr || source->fails) return kOfxStatFailed;
    const double scale = source->scaled ? call.scale : 1.0;
    const OfxRectI rod = pixels_of(clip.rod(), scale, clip.aspect());
    const auto asked = call.regions.find(clip.name);
    if (region == nullptr && asked != call.regions.end()) region = &asked->second;
    const OfxRectI part = region != nullptr ? pixels_of(*region, scale, clip.aspect()) : rod;
    const int n = source->missing;
    OfxRectI bounds{std::max(rod.x1 + n, part.x1), std::max(rod.y1 + n, part.y1),
                    std::min(rod.x2 - n, part.x2), std::min(rod.y2 - n, part.y2)};
    const OfxRectI& w = call.window;
    if (clip.is_output()) bounds = {w.x1 - 3, w.y1 - 2, w.x2 + 1, w.y2 + 4};  // a little more than the window
    auto made = std::make_unique<Image>(*source, bounds, rod, scale, clip.kept);
    if (source->steady) clip.kept = made->memory;
    made->is_output = clip.is_output();
    if (!clip.is_output()) {
        if (source->identified)
            made->add(kOfxImagePropUniqueIdentifier, {clip.name + std::to_string(clip.connection)});
        if (!made->is_kept) made->fill(*source, time, call.field);
    }
    *image = made.release()->handle();
    return kOfxStatOK;
}

OfxStatus release_image(PropertySet& properties) {
    const std::unique_ptr<Image> image(static_cast<Image*>(&properties));
    const Call& call = Call::now();
    if (image->is_output && call.output != nullptr) image->collect(call);
    return kOfxStatOK;
}

OfxStatus clip_rod(Clip& clip, OfxTime, OfxRectD* bounds) {
    *bounds = clip.rod();
    return clip.source() != nullptr ? kOfxStatOK : kOfxStatFailed;
}

int abort_wanted(Effect& effect) {
    if (effect.when_polled) effect.when_polled();
    const int polls = effect.polls.fetch_add(1, std::memory_order_relaxed) + 1;
    const int after = effect.abort_after.load(std::memory_order_relaxed);
    return after >= 0 && polls > after ? 1 : 0;
}

thread_local bool spawned = false;

OfxStatus multi_thread(OfxThreadFunctionV1 function, unsigned count, void* argument) {
    begin_call();
    if (spawned) return kOfxStatErrExists;
    if (services.threads_fail) return kOfxStatFailed;
    ++parallel_calls;
    const unsigned jobs = std::min(count, static_cast<unsigned>(services.threads));
    const Call* call = &Call::now();
    const auto work = [&](unsigned i) {
        const Call* outer = std::exchange(Call::current, call);
        spawned = true;
        function(i, jobs, argument);
        spawned = false;
        Call::current = outer;
    };
    std::vector<std::jthread> threads;
    for (unsigned i = 0; jobs > 1 && i < jobs; ++i) threads.emplace_back(work, i);
    if (jobs == 1) work(0);
    return kOfxStatOK;
}

OfxStatus cpus(unsigned* count) {
    begin_call();
    *count = static_cast<unsigned>(services.threads);
    return kOfxStatOK;
}

template <bool kPersistent>
OfxStatus show(void* effect, const char* type, const char*, const char* format, ...) {
    begin_call();
    if (kPersistent && effect == nullptr) note_fault("persistent message without an instance");
    char text[1024];
    std::va_list values;
    va_start(values, format);
    std::vsnprintf(text, sizeof text, format, values);
    va_end(values);
    shown.add((kPersistent ? "*" : "") + std::string(type) + ": " + text);
    return type == std::string(kOfxMessageQuestion) ? services.answer : kOfxStatOK;
}

OfxStatus clear_persistent(void*) {
    begin_call();
    shown.add("*cleared");
    return kOfxStatOK;
}

OfxStatus redraw(Interact& interact) {
    ++interact.redraws;
    return kOfxStatOK;
}

std::array<float, 3> paint{};

OfxStatus set_colour(OfxDrawContextHandle, const OfxRGBAColourF* colour) {
    paint = {colour->r, colour->g, colour->b};
    return kOfxStatOK;
}

OfxStatus draw_shape(OfxDrawContextHandle, OfxDrawPrimitive primitive, const OfxPointD* points, int count) {
    if (!may_draw()) return kOfxStatFailed;
    Shape& shape = drawing.shapes.emplace_back(Shape{primitive == kOfxDrawPrimitivePolygon, paint});
    for (int n = 0; n < count; ++n) shape.points.push_back({points[n].x, points[n].y});
    return kOfxStatOK;
}

// Functions that the plug-in does not call are null. The first version of messages is the beginning of the
// second.
struct Suites {
    OfxPropertySuiteV1 property{};
    OfxParameterSuiteV1 parameter{};
    OfxImageEffectSuiteV1 effect{};
    OfxMultiThreadSuiteV1 threads{};
    OfxMessageSuiteV2 message{show<false>, show<true>, clear_persistent};
    OfxInteractSuiteV1 interact{};
    OfxDrawSuiteV1 draw{};

    Suites() {
        property.propSetPointer = entered<set_one<void*>>;
        property.propSetString = entered<set_one<std::string, const char*>>;
        property.propSetDouble = entered<set_one<double>>;
        property.propSetInt = entered<set_one<int>>;
        property.propSetDoubleN = entered<set_doubles>;
        property.propGetPointer = entered<get_one<void*>>;
        property.propGetString = entered<get_one<std::string, char*>>;
        property.propGetDouble = entered<get_one<double>>;
        property.propGetInt = entered<get_one<int>>;
        parameter.paramDefine = entered<define>;
        parameter.paramGetHandle = entered<find_param>;
        parameter.paramSetGetPropertySet = entered<properties<ParamSet>>;
        parameter.paramGetValue = values<give>;
        parameter.paramGetValueAtTime = values_at<give>;
        parameter.paramSetValue = values<take>;
        parameter.paramSetValueAtTime = values_at<take>;
        parameter.paramDeleteAllKeys = entered<delete_keys>;
        parameter.paramEditBegin = entered<edit_begin>;
        parameter.paramEditEnd = entered<edit_end>;
        effect.getPropertySet = entered<properties<Effect>>;
        effect.getParamSet = entered<get_params>;
        effect.clipDefine = entered<define_clip>;
        effect.clipGetHandle = entered<find_clip>;
        effect.clipGetImage = entered<get_image>;
        effect.clipReleaseImage = entered<release_image>;
        effect.clipGetRegionOfDefinition = entered<clip_rod>;
        effect.abort = entered<abort_wanted>;
        threads.multiThread = multi_thread;
        threads.multiThreadNumCPUs = cpus;
        interact.interactGetPropertySet = entered<properties<Interact>>;
        interact.interactRedraw = entered<redraw>;
        draw.setColour = set_colour;
        draw.setLineWidth = [](OfxDrawContextHandle, float) -> OfxStatus { return kOfxStatOK; };
        draw.draw = draw_shape;
    }
};

}  // namespace

void begin_call() {
    for (std::string& text : lent) std::fill(text.begin(), text.end(), '?');
    std::deque<std::string>().swap(lent);
}

const void* Host::fetch_suite(OfxPropertySetHandle handle, const char* name, int version) {
    static const Suites all;
    static const std::map<std::string, const void*> suites{
        {"OfxPropertySuite 1", &all.property},   {"OfxImageEffectSuite 1", &all.effect},
        {"OfxParameterSuite 1", &all.parameter}, {"OfxMessageSuite 1", &all.message},
        {"OfxMultiThreadSuite 1", &all.threads}, {"OfxMessageSuite 2", &all.message},
        {"OfxInteractSuite 1", &all.interact},   {"OfxDrawSuite 1", &all.draw}};
    begin_call();
    // Of the host only its property set comes along: what it lacks is noted there.
    const std::string key = std::string(name) + ' ' + std::to_string(version);
    const auto found = suites.find(key);
    const PropertySet& host = Behind{handle};
    return host.has("missing " + key) || found == suites.end() ? nullptr : found->second;
}

}  // namespace ofxtest
