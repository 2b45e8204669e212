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
    properties_[name] = {values, values, type, false, access};
}

void PropertySet::add_list(const std::string& name, const Value& type, Access access) {
    properties_[name] = {{}, {}, type.index(), true, access};
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

OfxStatus PropertySet::reset(const char* name) {
    const auto found = properties_.find(name);
    if (found == properties_.end()) return kOfxStatErrUnknown;
    found->second.values = found->second.defaults;
    return kOfxStatOK;
}

OfxStatus PropertySet::dimension(const char* name, int& count) const {
    if (!has(name)) return kOfxStatErrUnknown;
    count = size(name);
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

template <class T>
OfxStatus set_many(OfxPropertySetHandle properties, const char* name, int count, const T* values) {
    begin_call();
    PropertySet* set = PropertySet::from(properties);
    if (set == nullptr) return kOfxStatErrBadHandle;
    OfxStatus status = kOfxStatOK;
    for (int i = 0; i < count && status == kOfxStatOK; ++i) status = set->set(name, i, to_value(values[i]));
    return status;
}

template <class T, class Stored>
OfxStatus get_many(OfxPropertySetHandle properties, const char* name, int first, int count, T* values) {
    begin_call();
    const PropertySet* set = PropertySet::from(properties);
    if (set == nullptr) return kOfxStatErrBadHandle;
    for (int i = 0; i < count; ++i) {
        Value value = Stored{};
        const OfxStatus status = set->get(name, first + i, value);
        if (status != kOfxStatOK) return status;
        from_value(value, values[i]);
    }
    return kOfxStatOK;
}

template <class T, class Stored = T>
OfxStatus get_one(OfxPropertySetHandle properties, const char* name, int index, T* value) {
    return get_many<T, Stored>(properties, name, index, 1, value);
}

template <class T, class Stored = T>
OfxStatus get_all(OfxPropertySetHandle properties, const char* name, int count, T* values) {
    return get_many<T, Stored>(properties, name, 0, count, values);
}

OfxStatus reset(OfxPropertySetHandle properties, const char* name) {
    begin_call();
    PropertySet* set = PropertySet::from(properties);
    return set != nullptr ? set->reset(name) : kOfxStatErrBadHandle;
}

OfxStatus get_dimension(OfxPropertySetHandle properties, const char* name, int* count) {
    begin_call();
    const PropertySet* set = PropertySet::from(properties);
    return set != nullptr ? set->dimension(name, *count) : kOfxStatErrBadHandle;
}

}  // namespace

const OfxPropertySuiteV1& property_suite() {
    static const OfxPropertySuiteV1 suite{set_one<void*>,
                                          set_one<const char*>,
                                          set_one<double>,
                                          set_one<int>,
                                          set_many<void*>,
                                          set_many<const char*>,
                                          set_many<double>,
                                          set_many<int>,
                                          get_one<void*>,
                                          get_one<char*, std::string>,
                                          get_one<double>,
                                          get_one<int>,
                                          get_all<void*>,
                                          get_all<char*, std::string>,
                                          get_all<double>,
                                          get_all<int>,
                                          reset,
                                          get_dimension};
    return suite;
}

}  // namespace ofxtest
