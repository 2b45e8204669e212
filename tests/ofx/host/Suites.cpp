// The suites that the plug-in calls.
#include <cstdarg>
#include <deque>
#include <thread>

#include "abi/OfxMessage.h"
#include "abi/OfxMultiThread.h"
#include "ofx/host/Host.h"

namespace ofxtest {

namespace {

std::mutex notes_lock;
std::string faults;

thread_local std::deque<std::string> lent;

}  // namespace

Services& services() {
    static Services instance;
    return instance;
}

std::vector<std::string> take_messages() {
    const std::lock_guard lock(notes_lock);
    return std::exchange(services().messages, {});
}

OfxStatus note_fault(const std::string& text, OfxStatus reply) {
    const std::lock_guard lock(notes_lock);
    faults += text + '\n';
    return reply;
}

std::string take_faults() {
    const std::lock_guard lock(notes_lock);
    return std::exchange(faults, {});
}

char* lend_string(std::string text) {
    return lent.emplace_back(std::move(text)).data();
}

void begin_call() {
    for (std::string& text : lent) std::fill(text.begin(), text.end(), '?');
    std::deque<std::string>().swap(lent);
}

namespace {

template <class Stored, class T = Stored>
OfxStatus set_one(OfxPropertySetHandle properties, const char* name, int index, T value) {
    begin_call();
    return behind<PropertySet>(properties).set(name, index, Stored(value));
}

OfxStatus set_doubles(OfxPropertySetHandle properties, const char* name, int count, const double* values) {
    OfxStatus status = kOfxStatOK;
    for (int i = 0; i < count && status == kOfxStatOK; ++i)
        status = set_one<double>(properties, name, i, values[i]);
    return status;
}

template <class Stored, class T = Stored>
OfxStatus get_one(OfxPropertySetHandle properties, const char* name, int index, T* out) {
    begin_call();
    Value value = Stored{};
    const OfxStatus status = behind<PropertySet>(properties).get(name, index, value);
    if (status != kOfxStatOK) return status;
    if constexpr (std::is_same_v<T, char*>) {
        *out = lend_string(std::get<std::string>(value));
    } else {
        *out = std::get<T>(value);
    }
    return kOfxStatOK;
}

const OfxPropertySuiteV1 kPropertySuite{set_one<void*>,  set_one<std::string, const char*>,
                                        set_one<double>, set_one<int>,
                                        nullptr,         nullptr,
                                        set_doubles,     nullptr,
                                        get_one<void*>,  get_one<std::string, char*>,
                                        get_one<double>, get_one<int>,
                                        nullptr,         nullptr,
                                        nullptr,         nullptr,
                                        nullptr,         nullptr};

OfxStatus define(OfxParamSetHandle handle, const char* type, const char* name, OfxPropertySetHandle* props) {
    auto& set = behind<ParamSet>(handle);
    if (!Call::now().may_define) note_fault(std::string("defines outside a describe action: ") + name);
    if (set.options.refused_types.count(type) != 0) return kOfxStatErrUnsupported;
    if (set.find(name) != nullptr)
        return note_fault(std::string("defines twice: ") + name, kOfxStatErrExists);
    auto param = Param::described(set, type, name);
    if (!param) return kOfxStatErrUnknown;
    if (param->type == kOfxParamTypePage) param->props.refused = set.options.refused_children;
    return hand_out(set.all.emplace_back(std::move(param)).get(), static_cast<OfxParamHandle*>(nullptr),
                    props);
}

OfxStatus get_handle(OfxParamSetHandle set, const char* name, OfxParamHandle* param,
                     OfxPropertySetHandle* props) {
    return hand_out(behind<ParamSet>(set).find(name), param, props);
}

OfxStatus set_properties(OfxParamSetHandle set, OfxPropertySetHandle* props) {
    *props = behind<ParamSet>(set).effect_props->handle();
    return kOfxStatOK;
}

OfxStatus give(OfxParamHandle handle, const OfxTime* time, std::va_list out) {
    begin_call();
    if (time == nullptr && Call::now().per_frame) note_fault("reads a value without the frame's time");
    const auto& param = behind<Param>(handle);
    if (!param.holds_value())
        return note_fault("reads a parameter without a value: " + param.name, kOfxStatErrUnsupported);
    const Param::Content content = param.value(time != nullptr ? *time : services().time);
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

OfxStatus take(OfxParamHandle handle, const OfxTime* key, std::va_list in) {
    begin_call();
    auto& param = behind<Param>(handle);
    if (!Call::now().may_set_params) note_fault("sets a parameter at the wrong time: " + param.name);
    if (!param.holds_value())
        return note_fault("sets a parameter without a value: " + param.name, kOfxStatErrUnsupported);
    Param::Content content;
    if (param.is_text()) content.text = va_arg(in, const char*);
    for (int i = 0; i < param.dimension && !param.is_text(); ++i)
        content.numbers.push_back(param.is_int() ? va_arg(in, int) : va_arg(in, double));
    // A step of its own, or part of the block that the plug-in opened.
    ParamSet& set = param.owner;
    if (set.open_blocks == 0) set.undo.emplace_back();
    set.undo.back().emplace_back(&param, param.content());
    if (key != nullptr) {
        param.set_keys({{*key, content.numbers}});
    } else {
        param.assign(content);
    }
    if (set.when_edited) set.when_edited(param.name);
    return kOfxStatOK;
}

// Gives or takes the values between a function's own arguments and its end.
template <auto kDo>
OfxStatus values(OfxParamHandle handle, ...) {
    std::va_list list;
    va_start(list, handle);
    const OfxStatus status = kDo(handle, nullptr, list);
    va_end(list);
    return status;
}

template <auto kDo>
OfxStatus values_at(OfxParamHandle handle, OfxTime time, ...) {
    std::va_list list;
    va_start(list, time);
    const OfxStatus status = kDo(handle, &time, list);
    va_end(list);
    return status;
}

OfxStatus edit_begin(OfxParamSetHandle handle, const char*) {
    auto& set = behind<ParamSet>(handle);
    if (set.open_blocks++ == 0) set.undo.emplace_back();
    return kOfxStatOK;
}

OfxStatus edit_end(OfxParamSetHandle handle) {
    auto& set = behind<ParamSet>(handle);
    if (set.open_blocks == 0) return note_fault("ends an edit that was not begun");
    if (--set.open_blocks == 0 && set.undo.back().empty()) set.undo.pop_back();
    return kOfxStatOK;
}

const OfxParameterSuiteV1 kParameterSuite = [] {
    OfxParameterSuiteV1 s{};
    s.paramDefine = entered<define>;
    s.paramGetHandle = entered<get_handle>;
    s.paramSetGetPropertySet = entered<set_properties>;
    s.paramGetValue = values<give>;
    s.paramGetValueAtTime = values_at<give>;
    s.paramSetValue = values<take>;
    s.paramSetValueAtTime = values_at<take>;
    s.paramEditBegin = entered<edit_begin>;
    s.paramEditEnd = entered<edit_end>;
    return s;
}();

OfxStatus get_properties(OfxImageEffectHandle effect, OfxPropertySetHandle* props) {
    *props = behind<Effect>(effect).props.handle();
    return kOfxStatOK;
}

OfxStatus get_params(OfxImageEffectHandle effect, OfxParamSetHandle* params) {
    *params = reinterpret_cast<OfxParamSetHandle>(&behind<Effect>(effect).params);
    return kOfxStatOK;
}

OfxStatus define_clip(OfxImageEffectHandle handle, const char* name, OfxPropertySetHandle* props) {
    auto& effect = behind<Effect>(handle);
    if (!Call::now().may_define || effect.find_clip(name) != nullptr)
        return note_fault(std::string("defines a clip twice, or outside a describe action: ") + name,
                          kOfxStatErrExists);
    *props = effect.clips.emplace_back(std::make_unique<Clip>(name))->props.handle();
    return kOfxStatOK;
}

OfxStatus clip_handle(OfxImageEffectHandle handle, const char* name, OfxImageClipHandle* clip,
                      OfxPropertySetHandle* props) {
    return hand_out(behind<Effect>(handle).find_clip(name), clip, props);
}

OfxStatus get_image(OfxImageClipHandle clip, OfxTime time, const OfxRectD* region,
                    OfxPropertySetHandle* image) {
    return behind<Clip>(clip).fetch(time, region, image);
}

OfxStatus release_image(OfxPropertySetHandle handle) {
    const std::unique_ptr<Image> image(static_cast<Image*>(&behind<PropertySet>(handle)));
    const Call& call = Call::now();
    if (image->is_output && call.output != nullptr) image->collect(call);
    return kOfxStatOK;
}

OfxStatus clip_rod(OfxImageClipHandle handle, OfxTime, OfxRectD* bounds) {
    const auto& clip = behind<Clip>(handle);
    *bounds = clip.rod();
    return clip.source() != nullptr ? kOfxStatOK : kOfxStatFailed;
}

int abort_wanted(OfxImageEffectHandle handle) {
    auto& effect = behind<Effect>(handle);
    if (effect.when_polled) effect.when_polled();
    const int polls = effect.polls.fetch_add(1, std::memory_order_relaxed) + 1;
    const int after = effect.abort_after.load(std::memory_order_relaxed);
    return after >= 0 && polls > after ? 1 : 0;
}

const OfxImageEffectSuiteV1 kImageEffectSuite = [] {
    OfxImageEffectSuiteV1 s{};
    s.getPropertySet = entered<get_properties>;
    s.getParamSet = entered<get_params>;
    s.clipDefine = entered<define_clip>;
    s.clipGetHandle = entered<clip_handle>;
    s.clipGetImage = entered<get_image>;
    s.clipReleaseImage = entered<release_image>;
    s.clipGetRegionOfDefinition = entered<clip_rod>;
    s.abort = entered<abort_wanted>;
    return s;
}();

thread_local bool spawned = false;

OfxStatus multi_thread(OfxThreadFunctionV1 function, unsigned count, void* argument) {
    if (spawned) return kOfxStatErrExists;
    if (services().threads_fail) return kOfxStatFailed;
    ++services().parallel_calls;
    const unsigned jobs = std::min(count, static_cast<unsigned>(services().threads));
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
    *count = static_cast<unsigned>(services().threads);
    return kOfxStatOK;
}

void note_message(std::string text) {
    const std::lock_guard lock(notes_lock);
    services().messages.push_back(std::move(text));
}

template <bool kPersistent>
OfxStatus message(void* effect, const char* type, const char*, const char* format, ...) {
    begin_call();
    if (kPersistent && effect == nullptr) note_fault("persistent message without an instance");
    char text[1024];
    std::va_list values;
    va_start(values, format);
    std::vsnprintf(text, sizeof text, format, values);
    va_end(values);
    note_message((kPersistent ? "*" : "") + std::string(type) + ": " + text);
    return kOfxStatOK;
}

OfxStatus clear_persistent(void*) {
    note_message("*cleared");
    return kOfxStatOK;
}

const OfxMultiThreadSuiteV1 kMultiThreadSuite = [] {
    OfxMultiThreadSuiteV1 s{};
    s.multiThread = entered<multi_thread>;
    s.multiThreadNumCPUs = entered<cpus>;
    return s;
}();

// The first version is its beginning.
const OfxMessageSuiteV2 kMessageSuite{message<false>, message<true>, entered<clear_persistent>};

}  // namespace

const void* Host::fetch_suite(OfxPropertySetHandle handle, const char* name, int version) {
    static const std::map<std::string, const void*> suites{
        {"OfxPropertySuite 1", &kPropertySuite},       {"OfxImageEffectSuite 1", &kImageEffectSuite},
        {"OfxParameterSuite 1", &kParameterSuite},     {"OfxMessageSuite 1", &kMessageSuite},
        {"OfxMultiThreadSuite 1", &kMultiThreadSuite}, {"OfxMessageSuite 2", &kMessageSuite}};
    begin_call();
    // Of the host only its property set comes along: what it lacks is noted there.
    const std::string key = std::string(name) + ' ' + std::to_string(version);
    const auto found = suites.find(key);
    return behind<PropertySet>(handle).has("missing " + key) || found == suites.end() ? nullptr
                                                                                      : found->second;
}

}  // namespace ofxtest
