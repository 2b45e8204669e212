#include <algorithm>
#include <cstdarg>
#include <mutex>
#include <stdexcept>

#include "ofx/host/Effect.h"
#include "ofx/host/Services.h"

namespace ofxtest {

std::unique_ptr<Param> Param::described(ParamSet& owner, const std::string& type, const std::string& name) {
    // Values of each type; 0 for those that hold none.
    static const std::map<std::string, int> dimensions{
        {kOfxParamTypeDouble, 1},    {kOfxParamTypeDouble2D, 2}, {kOfxParamTypeRGB, 3},
        {kOfxParamTypeRGBA, 4},      {kOfxParamTypeBoolean, 1},  {kOfxParamTypeChoice, 1},
        {kOfxParamTypeString, 1},    {kOfxParamTypeGroup, 0},    {kOfxParamTypePage, 0},
        {kOfxParamTypePushButton, 0}};
    const auto known = dimensions.find(type);
    if (known == dimensions.end()) return nullptr;
    const int n = known->second;
    std::unique_ptr<Param> param(new Param(owner, type, name, n));
    PropertySet& p = param->props;
    p.add_all({kOfxPropLabel, kOfxParamPropScriptName, kOfxParamPropHint, kOfxParamPropParent}, kText);
    p.add_all({kOfxParamPropSecret}, 0);
    p.add_all({kOfxParamPropEnabled}, 1);
    if (type == kOfxParamTypeGroup) p.add_all({kOfxParamPropGroupOpen}, 1);
    if (type == kOfxParamTypePage) p.add_lists({kOfxParamPropPageChild}, kText);
    if (n == 0) return param;

    const bool number = !param->is_text() && !param->is_int();
    p.add_all({kOfxParamPropAnimates}, number ? 1 : 0);
    p.add(kOfxParamPropIsAnimating, {0});
    p.add_all({kOfxParamPropEvaluateOnChange}, 1);
    p.add_all({kOfxParamPropDefault}, number ? Value(0.0) : param->is_int() ? Value(0) : kText, n);
    if (type == kOfxParamTypeChoice) p.add_lists({kOfxParamPropChoiceOption}, kText);
    if (!number) return param;
    p.add_all({kOfxParamPropMin, kOfxParamPropDisplayMin, kOfxParamPropMax, kOfxParamPropDisplayMax}, 0.0, n);
    if (!type.starts_with(kOfxParamTypeDouble)) return param;
    p.add_all({kOfxParamPropIncrement}, 1.0);
    p.add_all({kOfxParamPropDigits, kOfxParamPropUseHostOverlayHandle}, 0);
    p.add_all({kOfxParamPropDoubleType, kOfxParamPropDefaultCoordinateSystem}, kText);
    if (n > 1) p.add_all({kOfxParamPropDimensionLabel}, kText, n);
    return param;
}

Param::Param(ParamSet& owner, const Param& descriptor)
    : props(descriptor.props),
      owner_(owner),
      type_(descriptor.type_),
      name_(descriptor.name_),
      dimension_(descriptor.dimension_) {
    if (is_text()) content_.text = props.string_at(kOfxParamPropDefault);
    for (int i = 0; i < dimension_ && !is_text(); ++i) {
        content_.numbers.push_back(is_int() ? props.int_at(kOfxParamPropDefault, i)
                                            : props.double_at(kOfxParamPropDefault, i));
    }
}

Param::Content Param::at(double time) const {
    const std::shared_lock lock(lock_);
    const auto& keys = content_.keys;
    if (keys.empty()) return content_;
    const auto after = keys.upper_bound(time);
    if (after == keys.begin()) return {.numbers = after->second};
    const auto before = std::prev(after);
    Content result{.numbers = before->second};
    if (after == keys.end() || is_int()) return result;
    const double part = (time - before->first) / (after->first - before->first);
    for (std::size_t i = 0; i < result.numbers.size(); ++i)
        result.numbers[i] += part * (after->second[i] - before->second[i]);
    return result;
}

Param::Content Param::content() const {
    const std::shared_lock lock(lock_);
    return content_;
}

void Param::assign(const Content& content) {
    const std::unique_lock lock(lock_);
    content_ = content;
    props.put(kOfxParamPropIsAnimating, {content_.keys.empty() ? 0 : 1});
}

void Param::set_key(double time, std::vector<double> numbers) {
    if (props.int_at(kOfxParamPropAnimates) == 0) note_fault(name_ + " does not animate");
    Content keyed = content();
    keyed.keys[time] = std::move(numbers);
    assign(keyed);
}

Param* ParamSet::find(const std::string& name) const {
    const auto found =
        std::find_if(params_.begin(), params_.end(), [&](const auto& p) { return p->name() == name; });
    return found != params_.end() ? found->get() : nullptr;
}

Param& ParamSet::get(const std::string& name) const {
    if (Param* param = find(name)) return *param;
    throw std::out_of_range("no parameter " + name);
}

void ParamSet::edit(Param& param, const Param::Content& content, const double* key) {
    if (open_blocks == 0) undo.emplace_back();
    undo.back().emplace_back(&param, param.content());
    if (key != nullptr) {
        param.set_key(*key, content.numbers);
    } else {
        param.assign(content);
    }
    if (when_edited) when_edited(param);
}

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
