#include "ofx/host/PropertySet.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <utility>

namespace ofxtest {

namespace {

std::mutex faults_lock;
std::string faults;

thread_local std::deque<std::string> lent;

}  // namespace

void note_fault(const std::string& text) {
    const std::lock_guard lock(faults_lock);
    faults += text + '\n';
}

std::string take_faults() {
    const std::lock_guard lock(faults_lock);
    return std::exchange(faults, {});
}

char* lend_string(std::string text) {
    return lent.emplace_back(std::move(text)).data();
}

void begin_call() {
    for (std::string& text : lent) std::fill(text.begin(), text.end(), '?');
    std::deque<std::string>().swap(lent);
}

void PropertySet::add(const std::string& name, std::vector<Value> values, Access access) {
    const std::size_t type = values.at(0).index();
    properties_[name] = {std::move(values), type, false, access};
}

void PropertySet::add_list(const std::string& name, const Value& type, Access access) {
    properties_[name] = {{}, type.index(), true, access};
}

void PropertySet::put(const std::string& name, std::vector<Value> values) {
    properties_.at(name).values = std::move(values);
}

int PropertySet::size(const std::string& name) const {
    return has(name) ? static_cast<int>(properties_.at(name).values.size()) : 0;
}

std::vector<std::string> PropertySet::strings(const std::string& name) const {
    std::vector<std::string> result;
    for (int i = 0; i < size(name); ++i) result.push_back(string_at(name, i));
    return result;
}

const Value& PropertySet::at(const std::string& name, int i) const {
    return properties_.at(name).values.at(static_cast<std::size_t>(i));
}

PropertySet* PropertySet::from(OfxPropertySetHandle handle) {
    auto* set = reinterpret_cast<PropertySet*>(handle);
    if (set != nullptr && set->magic_ == kMagic) return set;
    note_fault("bad property set handle");
    return nullptr;
}

OfxStatus PropertySet::set(const char* name, int index, const Value& value) {
    const auto found = properties_.find(name);
    if (found == properties_.end()) {
        note_fault(std::string("sets unknown property ") + name);
        return kOfxStatErrUnknown;
    }
    Property& property = found->second;
    if (property.type != value.index() || property.access == kHostSets) {
        note_fault(std::string("sets property of other type or of the host, ") + name);
        return kOfxStatErrValue;
    }
    if (!refused.empty() && refused.count(std::get<std::string>(value)) != 0) return kOfxStatErrValue;
    const auto i = static_cast<std::size_t>(index);
    if (index < 0 || i > property.values.size() || (i == property.values.size() && !property.any_length)) {
        note_fault(std::string("sets beyond the end of ") + name);
        return kOfxStatErrBadIndex;
    }
    if (i == property.values.size()) property.values.emplace_back();
    property.values[i] = value;
    return kOfxStatOK;
}

OfxStatus PropertySet::get(const char* name, int index, Value& value) const {
    const auto found = properties_.find(name);
    if (found == properties_.end()) return kOfxStatErrUnknown;
    const Property& property = found->second;
    if (property.type != value.index()) {
        note_fault(std::string("reads property of another type, ") + name);
        return kOfxStatErrUnknown;
    }
    if (index < 0 || static_cast<std::size_t>(index) >= property.values.size()) return kOfxStatErrBadIndex;
    value = property.values[static_cast<std::size_t>(index)];
    return kOfxStatOK;
}

namespace {

// How the plain types of the suite become values and come back.
template <class T>
Value to_value(T value) {
    return value;
}
Value to_value(const char* value) {
    return std::string(value);
}
template <class T>
void from_value(const Value& value, T& out) {
    out = std::get<T>(value);
}
void from_value(const Value& value, char*& out) {
    out = lend_string(std::get<std::string>(value));
}

template <class T>
OfxStatus set_one(OfxPropertySetHandle properties, const char* name, int index, T value) {
    begin_call();
    PropertySet* set = PropertySet::from(properties);
    return set != nullptr ? set->set(name, index, to_value(value)) : kOfxStatErrBadHandle;
}

OfxStatus set_doubles(OfxPropertySetHandle properties, const char* name, int count, const double* values) {
    OfxStatus status = kOfxStatOK;
    for (int i = 0; i < count && status == kOfxStatOK; ++i) status = set_one(properties, name, i, values[i]);
    return status;
}

template <class T, class Stored = T>
OfxStatus get_one(OfxPropertySetHandle properties, const char* name, int index, T* out) {
    begin_call();
    const PropertySet* set = PropertySet::from(properties);
    if (set == nullptr) return kOfxStatErrBadHandle;
    Value value = Stored{};
    const OfxStatus status = set->get(name, index, value);
    if (status == kOfxStatOK) from_value(value, *out);
    return status;
}

}  // namespace

const OfxPropertySuiteV1& property_suite() {
    static const OfxPropertySuiteV1 suite = [] {
        OfxPropertySuiteV1 s{};
        s.propSetPointer = set_one<void*>;
        s.propSetString = set_one<const char*>;
        s.propSetDouble = set_one<double>;
        s.propSetInt = set_one<int>;
        s.propSetDoubleN = set_doubles;
        s.propGetPointer = get_one<void*>;
        s.propGetString = get_one<char*, std::string>;
        s.propGetDouble = get_one<double>;
        s.propGetInt = get_one<int>;
        return s;
    }();
    return suite;
}

}  // namespace ofxtest
