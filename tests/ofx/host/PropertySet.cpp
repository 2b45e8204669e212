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
