#include "ofx/host/Params.h"

#include <algorithm>
#include <cfloat>
#include <mutex>
#include <stdexcept>

namespace ofxtest {

namespace {

// Values of each type; 0 for those that hold none.
const std::map<std::string, int>& dimensions() {
    static const std::map<std::string, int> table{
        {kOfxParamTypeInteger, 1}, {kOfxParamTypeInteger2D, 2}, {kOfxParamTypeInteger3D, 3},
        {kOfxParamTypeDouble, 1},  {kOfxParamTypeDouble2D, 2},  {kOfxParamTypeDouble3D, 3},
        {kOfxParamTypeRGB, 3},     {kOfxParamTypeRGBA, 4},      {kOfxParamTypeBoolean, 1},
        {kOfxParamTypeChoice, 1},  {kOfxParamTypeString, 1},    {kOfxParamTypeCustom, 1},
        {kOfxParamTypeGroup, 0},   {kOfxParamTypePage, 0},      {kOfxParamTypePushButton, 0}};
    return table;
}

}  // namespace

bool Param::is_text() const {
    return type_ == kOfxParamTypeString || type_ == kOfxParamTypeCustom;
}

bool Param::is_int() const {
    return type_.starts_with(kOfxParamTypeInteger) || type_ == kOfxParamTypeBoolean ||
           type_ == kOfxParamTypeChoice;
}

Param::Param(ParamSet& owner, std::string type, std::string name, int dimension)
    : owner_(owner), type_(std::move(type)), name_(std::move(name)), dimension_(dimension) {}

std::unique_ptr<Param> Param::described(ParamSet& owner, const std::string& type, const std::string& name) {
    const auto known = dimensions().find(type);
    if (known == dimensions().end()) return nullptr;
    const int n = known->second;
    std::unique_ptr<Param> param(new Param(owner, type, name, n));
    PropertySet& p = param->props;
    constexpr auto kPlugin = PropertySet::kPluginSets;
    const auto each = [n](const Value& value) {
        return std::vector<Value>(static_cast<std::size_t>(n), value);
    };

    p.add(kOfxPropType, {std::string(kOfxTypeParameter)});
    p.add(kOfxPropName, {name});
    p.add(kOfxParamPropType, {type});
    for (const char* label : {kOfxPropLabel, kOfxPropShortLabel, kOfxPropLongLabel, kOfxParamPropScriptName})
        p.add(label, {name}, kPlugin);
    p.add(kOfxPropIcon, {std::string(), std::string()}, kPlugin);
    p.add(kOfxParamPropHint, {std::string()}, kPlugin);
    p.add(kOfxParamPropParent, {std::string()}, kPlugin);
    p.add(kOfxParamPropSecret, {0}, kPlugin);
    p.add(kOfxParamPropEnabled, {1}, kPlugin);
    p.add(kOfxParamPropDataPtr, {static_cast<void*>(nullptr)}, kPlugin);
    if (type == kOfxParamTypeGroup) p.add(kOfxParamPropGroupOpen, {1}, kPlugin);
    if (type == kOfxParamTypePage) p.add_list(kOfxParamPropPageChild, std::string(), kPlugin);
    if (n == 0) return param;

    const bool number = !param->is_text() && type != kOfxParamTypeBoolean && type != kOfxParamTypeChoice;
    p.add(kOfxParamPropAnimates, {number ? 1 : 0}, kPlugin);
    p.add(kOfxParamPropIsAnimating, {0});
    p.add(kOfxParamPropIsAutoKeying, {0});
    for (const char* flag : {kOfxParamPropPersistant, kOfxParamPropEvaluateOnChange, kOfxParamPropCanUndo})
        p.add(flag, {1}, kPlugin);
    p.add(kOfxParamPropCacheInvalidation, {std::string(kOfxParamInvalidateValueChange)}, kPlugin);
    if (param->is_text()) {
        p.add(kOfxParamPropDefault, {std::string()}, kPlugin);
        if (type == kOfxParamTypeString)
            p.add(kOfxParamPropStringMode, {std::string(kOfxParamStringIsSingleLine)}, kPlugin);
        return param;
    }
    const Value zero = param->is_int() ? Value(0) : Value(0.0);
    p.add(kOfxParamPropDefault, each(zero), kPlugin);
    if (type == kOfxParamTypeChoice) p.add_list(kOfxParamPropChoiceOption, std::string(), kPlugin);
    if (!number) return param;
    for (const char* limit : {kOfxParamPropMin, kOfxParamPropDisplayMin})
        p.add(limit, each(param->is_int() ? Value(INT_MIN) : Value(-DBL_MAX)), kPlugin);
    for (const char* limit : {kOfxParamPropMax, kOfxParamPropDisplayMax})
        p.add(limit, each(param->is_int() ? Value(INT_MAX) : Value(DBL_MAX)), kPlugin);
    if (param->is_int()) return param;
    p.add(kOfxParamPropIncrement, {1.0}, kPlugin);
    p.add(kOfxParamPropDigits, {2}, kPlugin);
    if (type.starts_with(kOfxParamTypeDouble)) {
        p.add(kOfxParamPropDoubleType, {std::string(kOfxParamDoubleTypePlain)}, kPlugin);
        p.add(kOfxParamPropDefaultCoordinateSystem, {std::string(kOfxParamCoordinatesCanonical)}, kPlugin);
        p.add(kOfxParamPropUseHostOverlayHandle, {0}, kPlugin);
        if (n > 1) p.add(kOfxParamPropDimensionLabel, each(std::string()), kPlugin);
    }
    return param;
}

Param::Param(ParamSet& owner, const Param& descriptor)
    : props(descriptor.props),
      owner_(owner),
      type_(descriptor.type_),
      name_(descriptor.name_),
      dimension_(descriptor.dimension_) {
    props.put(kOfxPropType, {std::string(kOfxTypeParameterInstance)});
    if (is_text()) content_.text = props.string_at(kOfxParamPropDefault);
    for (int i = 0; i < dimension_ && !is_text(); ++i) {
        content_.numbers.push_back(is_int() ? props.int_at(kOfxParamPropDefault, i)
                                            : props.double_at(kOfxParamPropDefault, i));
    }
}

Param::Content Param::at(double time) const {
    const std::shared_lock lock(lock_);
    if (keys_.empty()) return content_;
    const auto after = keys_.upper_bound(time);
    if (after == keys_.begin()) return {after->second, {}};
    const auto before = std::prev(after);
    if (after == keys_.end() || is_int()) return {before->second, {}};
    Content result{before->second, {}};
    const double part = (time - before->first) / (after->first - before->first);
    for (std::size_t i = 0; i < result.numbers.size(); ++i)
        result.numbers[i] += part * (after->second[i] - before->second[i]);
    return result;
}

void Param::assign(const Content& content) {
    const std::unique_lock lock(lock_);
    keys_.clear();
    content_ = content;
}

void Param::set_key(double time, std::vector<double> numbers) {
    if (props.int_at(kOfxParamPropAnimates) == 0) throw std::logic_error(name_ + " does not animate");
    const std::unique_lock lock(lock_);
    keys_[time] = std::move(numbers);
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

Param* ParamSet::add(std::unique_ptr<Param> param) {
    return params_.emplace_back(std::move(param)).get();
}

void ParamSet::edit(Param& param, const Param::Content& content) {
    if (open_blocks_ == 0) undo.push_back({param.name(), {}});
    undo.back().before.emplace_back(&param, param.value());
    param.assign(content);
    if (when_edited) when_edited(param);
}

OfxStatus ParamSet::begin_edit(const std::string& name) {
    if (open_blocks_++ == 0) undo.push_back({name, {}});
    return kOfxStatOK;
}

OfxStatus ParamSet::end_edit() {
    if (open_blocks_ == 0) {
        note_fault("ends an edit that was not begun");
        return kOfxStatFailed;
    }
    if (--open_blocks_ == 0 && undo.back().before.empty()) undo.pop_back();
    return kOfxStatOK;
}

}  // namespace ofxtest
