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

OfxStatus note_fault(const std::string& text, OfxStatus reply) {
    const std::lock_guard lock(faults_lock);
    faults += text + '\n';
    return reply;
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

void PropertySet::add_all(Names names, const Value& value, int n) {
    for (const char* name : names)
        add(name, std::vector<Value>(static_cast<std::size_t>(n), value), kPluginSets);
}

void PropertySet::add_lists(Names names, const Value& type) {
    for (const char* name : names) properties_[name] = {{}, type.index(), true, kPluginSets};
}

std::vector<std::string> PropertySet::strings(const std::string& name) const {
    std::vector<std::string> result;
    for (int i = 0; has(name) && i < size(name); ++i) result.push_back(string_at(name, i));
    return result;
}

PropertySet* PropertySet::from(OfxPropertySetHandle handle) {
    auto* set = reinterpret_cast<PropertySet*>(handle);
    if (set != nullptr && set->magic_ == kMagic) return set;
    note_fault("bad property set handle");
    return nullptr;
}

OfxStatus PropertySet::set(const char* name, int index, const Value& value) {
    const auto found = properties_.find(name);
    if (found == properties_.end())
        return note_fault(std::string("sets unknown property ") + name, kOfxStatErrUnknown);
    Property& p = found->second;
    if (p.type != value.index() || p.access == kHostSets)
        return note_fault(std::string("sets property of other type or of the host, ") + name,
                          kOfxStatErrValue);
    if (!refused.empty() && refused.count(std::get<std::string>(value)) != 0) return kOfxStatErrValue;
    const auto i = static_cast<std::size_t>(index);
    if (p.any_length && i == p.values.size()) p.values.emplace_back();
    if (i >= p.values.size())
        return note_fault(std::string("sets beyond the end of ") + name, kOfxStatErrBadIndex);
    p.values[i] = value;
    return kOfxStatOK;
}

OfxStatus PropertySet::get(const char* name, int index, Value& value) const {
    const auto found = properties_.find(name);
    if (found == properties_.end()) return kOfxStatErrUnknown;
    const Property& p = found->second;
    if (p.type != value.index())
        return note_fault(std::string("reads property of another type, ") + name, kOfxStatErrUnknown);
    if (static_cast<std::size_t>(index) >= p.values.size()) return kOfxStatErrBadIndex;
    value = p.values[static_cast<std::size_t>(index)];
    return kOfxStatOK;
}

namespace {

template <class Stored, class T = Stored>
OfxStatus set_one(OfxPropertySetHandle properties, const char* name, int index, T value) {
    begin_call();
    PropertySet* set = PropertySet::from(properties);
    return set != nullptr ? set->set(name, index, Stored(value)) : kOfxStatErrBadHandle;
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
    const PropertySet* set = PropertySet::from(properties);
    Value value = Stored{};
    const OfxStatus status = set != nullptr ? set->get(name, index, value) : kOfxStatErrBadHandle;
    if (status != kOfxStatOK) return status;
    if constexpr (std::is_same_v<T, char*>) {
        *out = lend_string(std::get<std::string>(value));
    } else {
        *out = std::get<T>(value);
    }
    return kOfxStatOK;
}

}  // namespace

const OfxPropertySuiteV1& property_suite() {
    static const OfxPropertySuiteV1 suite{set_one<void*>,  set_one<std::string, const char*>,
                                          set_one<double>, set_one<int>,
                                          nullptr,         nullptr,
                                          set_doubles,     nullptr,
                                          get_one<void*>,  get_one<std::string, char*>,
                                          get_one<double>, get_one<int>,
                                          nullptr,         nullptr,
                                          nullptr,         nullptr,
                                          nullptr,         nullptr};
    return suite;
}

}  // namespace ofxtest
