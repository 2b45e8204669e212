#include "parameters/ParameterSet.h"

#include <algorithm>

#include "host/Host.h"

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

bool is_integer(const Parameter& parameter) {
    const Knob::Kind kind = parameter.knob->kind();
    return kind == Knob::Kind::kBool || kind == Knob::Kind::kMenu;
}

}  // namespace

ParameterSet::ParameterSet(OfxImageEffectHandle effect, const ParameterList& list) : list_(list) {
    check(suites().effect->getParamSet(effect, &set_), "the effect has no parameters");
    for (const Parameter& parameter : list.parameters()) handles_.emplace_back(set_, parameter.name.c_str());
    texts_.resize(handles_.size());
}

Value ParameterSet::value(std::size_t n, std::optional<OfxTime> time) const {
    const Parameter& parameter = list_.parameters()[n];
    const ParameterHandle& handle = handles_[n];
    Value value;
    for (int i = 0; i < std::min(parameter.knob->value_count(), 4); ++i) {
        value.numbers[static_cast<std::size_t>(i)] = parameter.knob->default_value(i);
    }
    if (!handle || parameter.is_button()) return value;
    std::array<double, 4> v = value.numbers;
    if (parameter.is_text()) {
        const std::lock_guard hold(mutex_);
        if (!time) texts_[n] = handle.text();
        value.text = texts_[n];
    } else if (is_integer(parameter)) {
        int number = 0;
        if (handle.get(time, &number)) value.numbers[0] = number;
    } else if (handle.get(time, &v[0], &v[1], &v[2], &v[3])) {
        value.numbers = v;
    }
    return value;
}

Values ParameterSet::values(std::optional<OfxTime> time) const {
    Values all;
    for (std::size_t n = 0; n < handles_.size(); ++n) all.push_back(value(n, time));
    return all;
}

Values ParameterSet::values_with_texts(OfxTime time) const {
    Values all = values(time);
    for (std::size_t n = 0; n < all.size(); ++n) {
        if (list_.parameters()[n].is_text()) all[n] = value(n, std::nullopt);
    }
    return all;
}

std::optional<std::size_t> ParameterSet::find(std::string_view name) const {
    const std::vector<Parameter>& all = list_.parameters();
    const auto at = std::find_if(all.begin(), all.end(), [&](const Parameter& p) { return p.name == name; });
    if (at == all.end()) return std::nullopt;
    return static_cast<std::size_t>(at - all.begin());
}

bool ParameterSet::animates(std::size_t n) const {
    return handles_[n] && handles_[n].properties().integer(kOfxParamPropIsAnimating) != 0;
}

void ParameterSet::set(std::size_t n, const Value& value, OfxTime time) const {
    const Parameter& parameter = list_.parameters()[n];
    const ParameterHandle& handle = handles_[n];
    if (!handle) return;
    std::optional<OfxTime> key;
    if (animates(n)) key = time;
    const std::array<double, 4>& v = value.numbers;
    if (parameter.is_text()) {
        handle.put(key, value.text.c_str());
    } else if (is_integer(parameter)) {
        handle.put(key, static_cast<int>(v[0]));
    } else {
        handle.put(key, v[0], v[1], v[2], v[3]);
    }
}

void ParameterSet::delete_keys(std::size_t n) const {
    if (animates(n)) handles_[n].delete_keys();
}

void ParameterSet::enable(std::size_t n, bool on) const {
    handles_[n].properties().set(kOfxParamPropEnabled, on ? 1 : 0);
}

ParameterSet::Edit::Edit(const ParameterSet& set, const std::string& name) : set_(set.set_) {
    if (suites().parameter->paramEditBegin(set_, name.c_str()) != kOfxStatOK) set_ = nullptr;
}

ParameterSet::Edit::~Edit() {
    if (set_ != nullptr) suites().parameter->paramEditEnd(set_);
}

}  // namespace veloxa::ofx
