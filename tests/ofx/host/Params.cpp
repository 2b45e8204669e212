#include <algorithm>
#include <cstdarg>
#include <mutex>
#include <stdexcept>

#include "ofx/host/Host.h"

namespace ofxtest {

namespace {

OfxStatus define(OfxParamSetHandle handle, const char* type, const char* name, OfxPropertySetHandle* props) {
    auto& set = behind<ParamSet>(handle);
    if (!set.describing) note_fault(std::string("defines outside a describe action: ") + name);
    if (set.refused_types.count(type) != 0) return kOfxStatErrUnsupported;
    if (set.find(name) != nullptr)
        return note_fault(std::string("defines twice: ") + name, kOfxStatErrExists);
    auto param = Param::described(set, type, name);
    if (!param) return kOfxStatErrUnknown;
    if (param->type() == kOfxParamTypePage) param->props.refused = set.refused_children;
    if (props != nullptr) *props = param->props.handle();
    set.add(std::move(param));
    return kOfxStatOK;
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
        return note_fault("reads a parameter without a value: " + param.name(), kOfxStatErrUnsupported);
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
    if (!Call::now().may_set_params) note_fault("sets a parameter at the wrong time: " + param.name());
    if (!param.holds_value())
        return note_fault("sets a parameter without a value: " + param.name(), kOfxStatErrUnsupported);
    Param::Content content;
    if (param.is_text()) content.text = va_arg(in, const char*);
    for (int i = 0; i < param.dimension() && !param.is_text(); ++i)
        content.numbers.push_back(param.is_int() ? va_arg(in, int) : va_arg(in, double));
    param.owner().edit(param, content, key);
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

const OfxParameterSuiteV1& parameter_suite() {
    static const OfxParameterSuiteV1 suite = [] {
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
    return suite;
}

}  // namespace ofxtest
