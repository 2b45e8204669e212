#include "ofx/host/Params.h"

#include <algorithm>
#include <mutex>
#include <stdexcept>

namespace ofxtest {

namespace {

// Values of each type; 0 for those that hold none.
const std::map<std::string, int>& dimensions() {
    static const std::map<std::string, int> table{{kOfxParamTypeDouble, 1},  {kOfxParamTypeDouble2D, 2},
                                                  {kOfxParamTypeRGB, 3},     {kOfxParamTypeRGBA, 4},
                                                  {kOfxParamTypeBoolean, 1}, {kOfxParamTypeChoice, 1},
                                                  {kOfxParamTypeString, 1},  {kOfxParamTypeGroup, 0},
                                                  {kOfxParamTypePage, 0},    {kOfxParamTypePushButton, 0}};
    return table;
}

}  // namespace

bool Param::is_text() const {
    return type_ == kOfxParamTypeString;
}

bool Param::is_int() const {
    return type_ == kOfxParamTypeBoolean || type_ == kOfxParamTypeChoice;
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

    for (const char* text : {kOfxPropLabel, kOfxParamPropScriptName, kOfxParamPropHint, kOfxParamPropParent})
        p.add(text, {std::string()}, kPlugin);
    p.add(kOfxParamPropSecret, {0}, kPlugin);
    p.add(kOfxParamPropEnabled, {1}, kPlugin);
    if (type == kOfxParamTypeGroup) p.add(kOfxParamPropGroupOpen, {1}, kPlugin);
    if (type == kOfxParamTypePage) p.add_list(kOfxParamPropPageChild, std::string(), kPlugin);
    if (n == 0) return param;

    const bool number = !param->is_text() && !param->is_int();
    p.add(kOfxParamPropAnimates, {number ? 1 : 0}, kPlugin);
    p.add(kOfxParamPropIsAnimating, {0});
    p.add(kOfxParamPropEvaluateOnChange, {1}, kPlugin);
    p.add(kOfxParamPropDefault,
          each(param->is_text()  ? Value(std::string())
               : param->is_int() ? Value(0)
                                 : Value(0.0)),
          kPlugin);
    if (type == kOfxParamTypeChoice) p.add_list(kOfxParamPropChoiceOption, std::string(), kPlugin);
    if (!number) return param;
    for (const char* limit :
         {kOfxParamPropMin, kOfxParamPropDisplayMin, kOfxParamPropMax, kOfxParamPropDisplayMax})
        p.add(limit, each(0.0), kPlugin);
    if (type.starts_with(kOfxParamTypeDouble)) {
        p.add(kOfxParamPropIncrement, {1.0}, kPlugin);
        p.add(kOfxParamPropDigits, {2}, kPlugin);
        p.add(kOfxParamPropDoubleType, {std::string()}, kPlugin);
        p.add(kOfxParamPropDefaultCoordinateSystem, {std::string()}, kPlugin);
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

Param* ParamSet::add(std::unique_ptr<Param> param) {
    return params_.emplace_back(std::move(param)).get();
}

void ParamSet::edit(Param& param, const Param::Content& content, const double* key) {
    if (open_blocks_ == 0) undo.emplace_back();
    undo.back().emplace_back(&param, param.content());
    if (key != nullptr) {
        param.set_key(*key, content.numbers);
    } else {
        param.assign(content);
    }
    if (when_edited) when_edited(param);
}

OfxStatus ParamSet::begin_edit() {
    if (open_blocks_++ == 0) undo.emplace_back();
    return kOfxStatOK;
}

OfxStatus ParamSet::end_edit() {
    if (open_blocks_ == 0) {
        note_fault("ends an edit that was not begun");
        return kOfxStatFailed;
    }
    if (--open_blocks_ == 0 && undo.back().empty()) undo.pop_back();
    return kOfxStatOK;
}

}  // namespace ofxtest
