#include <cstdarg>

#include "ofx/host/Effect.h"
#include "ofx/host/Params.h"
#include "ofx/host/Services.h"

namespace ofxtest {

namespace {

ParamSet& set_of(OfxParamSetHandle handle) {
    return *reinterpret_cast<ParamSet*>(handle);
}

Param& param_of(OfxParamHandle handle) {
    return *reinterpret_cast<Param*>(handle);
}

OfxStatus define(OfxParamSetHandle handle, const char* type, const char* name, OfxPropertySetHandle* props) {
    begin_call();
    ParamSet& set = set_of(handle);
    if (!set.describing) note_fault(std::string("defines outside a describe action: ") + name);
    if (set.refused_types.count(type) != 0) return kOfxStatErrUnsupported;
    if (set.find(name) != nullptr) {
        note_fault(std::string("defines twice: ") + name);
        return kOfxStatErrExists;
    }
    auto param = Param::described(set, type, name);
    if (!param) return kOfxStatErrUnknown;
    if (param->type() == kOfxParamTypePage) param->props.refused = set.refused_children;
    if (props != nullptr) *props = param->props.handle();
    set.add(std::move(param));
    return kOfxStatOK;
}

OfxStatus get_handle(OfxParamSetHandle set, const char* name, OfxParamHandle* param,
                     OfxPropertySetHandle* props) {
    begin_call();
    Param* found = set_of(set).find(name);
    if (found == nullptr) return kOfxStatErrUnknown;
    *param = found->handle();
    if (props != nullptr) *props = found->props.handle();
    return kOfxStatOK;
}

OfxStatus set_properties(OfxParamSetHandle set, OfxPropertySetHandle* props) {
    begin_call();
    *props = set_of(set).effect_props->handle();
    return kOfxStatOK;
}

OfxStatus give(const Param& param, const Param::Content& content, std::va_list out) {
    if (!param.holds_value()) {
        note_fault("reads a parameter without a value: " + param.name());
        return kOfxStatErrUnsupported;
    }
    if (param.is_text()) {
        const Call* call = Call::current();
        if (call != nullptr && call->per_frame) note_fault("reads a text that its user may be editing");
        *va_arg(out, char**) = lend_string(content.text);
        return kOfxStatOK;
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

OfxStatus take(Param& param, const OfxTime* key, std::va_list in) {
    const Call* call = Call::current();
    if (call == nullptr || !call->may_set_params)
        note_fault("sets a parameter at the wrong time: " + param.name());
    if (!param.holds_value()) {
        note_fault("sets a parameter without a value: " + param.name());
        return kOfxStatErrUnsupported;
    }
    Param::Content content;
    if (param.is_text()) content.text = va_arg(in, const char*);
    for (int i = 0; i < param.dimension() && !param.is_text(); ++i)
        content.numbers.push_back(param.is_int() ? va_arg(in, int) : va_arg(in, double));
    param.owner().edit(param, content, key);
    return kOfxStatOK;
}

OfxStatus get_value(OfxParamHandle handle, ...) {
    begin_call();
    const Call* call = Call::current();
    if (call != nullptr && call->per_frame) note_fault("reads a value without the frame's time");
    std::va_list out;
    va_start(out, handle);
    const Param& param = param_of(handle);
    const OfxStatus status = give(param, param.at(services().time), out);
    va_end(out);
    return status;
}

OfxStatus get_value_at(OfxParamHandle handle, OfxTime time, ...) {
    begin_call();
    std::va_list out;
    va_start(out, time);
    const Param& param = param_of(handle);
    const OfxStatus status = give(param, param.at(time), out);
    va_end(out);
    return status;
}

OfxStatus set_value(OfxParamHandle handle, ...) {
    begin_call();
    std::va_list in;
    va_start(in, handle);
    const OfxStatus status = take(param_of(handle), nullptr, in);
    va_end(in);
    return status;
}

OfxStatus set_value_at(OfxParamHandle handle, OfxTime time, ...) {
    begin_call();
    std::va_list in;
    va_start(in, time);
    const OfxStatus status = take(param_of(handle), &time, in);
    va_end(in);
    return status;
}

OfxStatus edit_begin(OfxParamSetHandle set, const char*) {
    begin_call();
    return set_of(set).begin_edit();
}

OfxStatus edit_end(OfxParamSetHandle set) {
    begin_call();
    return set_of(set).end_edit();
}

}  // namespace

const OfxParameterSuiteV1& parameter_suite() {
    static const OfxParameterSuiteV1 suite = [] {
        OfxParameterSuiteV1 s{};
        s.paramDefine = define;
        s.paramGetHandle = get_handle;
        s.paramSetGetPropertySet = set_properties;
        s.paramGetValue = get_value;
        s.paramGetValueAtTime = get_value_at;
        s.paramSetValue = set_value;
        s.paramSetValueAtTime = set_value_at;
        s.paramEditBegin = edit_begin;
        s.paramEditEnd = edit_end;
        return s;
    }();
    return suite;
}

}  // namespace ofxtest
