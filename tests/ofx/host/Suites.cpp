// The suites that the plug-in calls, but for those of effects.
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

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

}  // namespace

const OfxPropertySuiteV1 kPropertySuite{set_one<void*>,  set_one<std::string, const char*>,
                                        set_one<double>, set_one<int>,
                                        nullptr,         nullptr,
                                        set_doubles,     nullptr,
                                        get_one<void*>,  get_one<std::string, char*>,
                                        get_one<double>, get_one<int>,
                                        nullptr,         nullptr,
                                        nullptr,         nullptr,
                                        nullptr,         nullptr};

namespace {

OfxStatus define(OfxParamSetHandle handle, const char* type, const char* name, OfxPropertySetHandle* props) {
    auto& set = behind<ParamSet>(handle);
    if (!set.describing) note_fault(std::string("defines outside a describe action: ") + name);
    if (set.refused_types.count(type) != 0) return kOfxStatErrUnsupported;
    if (set.find(name) != nullptr)
        return note_fault(std::string("defines twice: ") + name, kOfxStatErrExists);
    auto param = Param::described(set, type, name);
    if (!param) return kOfxStatErrUnknown;
    if (param->type == kOfxParamTypePage) param->props.refused = set.refused_children;
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

OfxStatus give(OfxParamHandle handle, double time, std::va_list out) {
    begin_call();
    const auto& param = behind<Param>(handle);
    if (!param.holds_value())
        return note_fault("reads a parameter without a value: " + param.name, kOfxStatErrUnsupported);
    const Param::Content content = param.at(time);
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
    param.owner.edit(param, content, key);
    return kOfxStatOK;
}

OfxStatus get_value(OfxParamHandle handle, ...) {
    if (Call::now().per_frame) note_fault("reads a value without the frame's time");
    std::va_list out;
    va_start(out, handle);
    const OfxStatus status = give(handle, services().time, out);
    va_end(out);
    return status;
}

OfxStatus get_value_at(OfxParamHandle handle, OfxTime time, ...) {
    std::va_list out;
    va_start(out, time);
    const OfxStatus status = give(handle, time, out);
    va_end(out);
    return status;
}

OfxStatus set_value(OfxParamHandle handle, ...) {
    std::va_list in;
    va_start(in, handle);
    const OfxStatus status = take(handle, nullptr, in);
    va_end(in);
    return status;
}

OfxStatus set_value_at(OfxParamHandle handle, OfxTime time, ...) {
    std::va_list in;
    va_start(in, time);
    const OfxStatus status = take(handle, &time, in);
    va_end(in);
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

}  // namespace

const OfxParameterSuiteV1 kParameterSuite = [] {
    OfxParameterSuiteV1 s{};
    s.paramDefine = entered<define>;
    s.paramGetHandle = entered<get_handle>;
    s.paramSetGetPropertySet = entered<set_properties>;
    s.paramGetValue = get_value;
    s.paramGetValueAtTime = get_value_at;
    s.paramSetValue = set_value;
    s.paramSetValueAtTime = set_value_at;
    s.paramEditBegin = entered<edit_begin>;
    s.paramEditEnd = entered<edit_end>;
    return s;
}();

namespace {

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

}  // namespace

const OfxMultiThreadSuiteV1 kMultiThreadSuite = [] {
    OfxMultiThreadSuiteV1 s{};
    s.multiThread = entered<multi_thread>;
    s.multiThreadNumCPUs = entered<cpus>;
    return s;
}();

const OfxMessageSuiteV2 kMessageSuite{message<false>, message<true>, entered<clear_persistent>};

}  // namespace ofxtest
