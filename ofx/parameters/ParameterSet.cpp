#include "parameters/ParameterSet.h"

#include <algorithm>

#include "host/Host.h"
#include "host/Properties.h"

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

OfxParamHandle handle_of(OfxParamSetHandle set, const char* name, OfxPropertySetHandle* properties) {
    OfxParamHandle handle = nullptr;
    const OfxStatus status = suites().parameter->paramGetHandle(set, name, &handle, properties);
    return status == kOfxStatOK ? handle : nullptr;
}

// A host reads as many of the pointers or values as the parameter has.
template <class... Pointers>
bool get(OfxParamHandle handle, std::optional<OfxTime> time, Pointers... pointers) {
    const OfxParameterSuiteV1& suite = *suites().parameter;
    const OfxStatus status = time ? suite.paramGetValueAtTime(handle, *time, pointers...)
                                  : suite.paramGetValue(handle, pointers...);
    return status == kOfxStatOK;
}

template <class... Numbers>
void put(OfxParamHandle handle, std::optional<OfxTime> time, Numbers... values) {
    const OfxParameterSuiteV1& suite = *suites().parameter;
    const OfxStatus status =
        time ? suite.paramSetValueAtTime(handle, *time, values...) : suite.paramSetValue(handle, values...);
    check(status, "the host did not take a parameter's value");
}

bool is_integer(const Parameter& parameter) {
    const Knob::Kind kind = parameter.knob->kind();
    return kind == Knob::Kind::kBool || kind == Knob::Kind::kMenu;
}

}  // namespace

ParameterSet::ParameterSet(OfxImageEffectHandle effect, const ParameterList& list) : list_(list) {
    check(suites().effect->getParamSet(effect, &set_), "the effect has no parameters");
    for (const Parameter& parameter : list.parameters()) {
        Slot slot;
        slot.handle = handle_of(set_, parameter.name.c_str(), &slot.properties);
        slots_.push_back(slot);
    }
    texts_.resize(slots_.size());
    first_ = handle_of(set_, kFirstCorner, nullptr);
    second_ = handle_of(set_, kSecondCorner, nullptr);
}

Value ParameterSet::value(std::size_t n, std::optional<OfxTime> time) const {
    const Parameter& parameter = list_.parameters()[n];
    const OfxParamHandle handle = slots_[n].handle;
    Value value;
    for (int i = 0; i < std::min(parameter.knob->value_count(), 4); ++i) {
        value.numbers[static_cast<std::size_t>(i)] = parameter.knob->default_value(i);
    }
    if (handle == nullptr || parameter.is_button()) return value;
    std::array<double, 4> v = value.numbers;
    if (parameter.is_text()) {
        const std::lock_guard hold(mutex_);
        char* text = nullptr;
        if (!time) texts_[n] = get(handle, time, &text) && text != nullptr ? text : "";
        value.text = texts_[n];
    } else if (is_integer(parameter)) {
        int number = 0;
        if (get(handle, time, &number)) value.numbers[0] = number;
    } else if (get(handle, time, &v[0], &v[1], &v[2], &v[3])) {
        value.numbers = v;
    }
    return value;
}

Values ParameterSet::values(std::optional<OfxTime> time) const {
    Values all;
    for (std::size_t n = 0; n < slots_.size(); ++n) all.push_back(value(n, time));
    return all;
}

std::optional<std::size_t> ParameterSet::find(std::string_view name) const {
    const std::vector<Parameter>& all = list_.parameters();
    const auto at = std::find_if(all.begin(), all.end(), [&](const Parameter& p) { return p.name == name; });
    if (at == all.end()) return std::nullopt;
    return static_cast<std::size_t>(at - all.begin());
}

OfxRectD ParameterSet::sampling_rectangle(OfxTime time) const {
    OfxPointD a{};
    OfxPointD b{};
    if (first_ != nullptr) get(first_, time, &a.x, &a.y);
    if (second_ != nullptr) get(second_, time, &b.x, &b.y);
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

void ParameterSet::set(std::size_t n, const Value& value, OfxTime time) const {
    const Parameter& parameter = list_.parameters()[n];
    const Slot& slot = slots_[n];
    if (slot.handle == nullptr) return;
    std::optional<OfxTime> key;
    if (Properties(slot.properties).integer(kOfxParamPropIsAnimating) != 0) key = time;
    const std::array<double, 4>& v = value.numbers;
    if (parameter.is_text()) {
        put(slot.handle, key, value.text.c_str());
    } else if (is_integer(parameter)) {
        put(slot.handle, key, static_cast<int>(v[0]));
    } else {
        put(slot.handle, key, v[0], v[1], v[2], v[3]);
    }
}

void ParameterSet::enable(std::size_t n, bool on) const {
    Properties(slots_[n].properties).set(kOfxParamPropEnabled, on ? 1 : 0);
}

ParameterSet::Edit::Edit(const ParameterSet& set, const std::string& name) : set_(set.set_) {
    if (suites().parameter->paramEditBegin(set_, name.c_str()) != kOfxStatOK) set_ = nullptr;
}

ParameterSet::Edit::~Edit() {
    if (set_ != nullptr) suites().parameter->paramEditEnd(set_);
}

}  // namespace veloxa::ofx
