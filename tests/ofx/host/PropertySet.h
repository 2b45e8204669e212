// The property sets of the test host, and what it notes of a plug-in that breaks the rules.
//
// A set knows beforehand which properties it has, of which type and length, and which of them a plug-in may
// set. Reading is safe from many threads as long as nobody sets.
//
// The suites of this host have the functions that the plug-in calls; where there is none a table holds null.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "abi/OfxProperty.h"

namespace ofxtest {

// Whatever a plug-in does that a host may not put up with: unknown properties, wrong types, illegal moments.
// Any thread. take_faults gives what was noted since, a line each.
void note_fault(const std::string& text);
std::string take_faults();

using Value = std::variant<void*, std::string, double, int>;

class PropertySet {
  public:
    enum Access { kHostSets, kPluginSets };

    PropertySet() = default;
    PropertySet(const PropertySet&) = default;
    PropertySet& operator=(const PropertySet&) = default;
    ~PropertySet() { magic_ = 0; }

    // A property of as many values; these are its defaults.
    void add(const std::string& name, std::vector<Value> values, Access access = kHostSets);
    // One of any length, empty at first; `type` is any value of its type.
    void add_list(const std::string& name, const Value& type, Access access = kHostSets);
    // Sets values of a property that exists.
    void put(const std::string& name, std::vector<Value> values);

    bool has(const std::string& name) const { return properties_.count(name) != 0; }
    int size(const std::string& name) const;
    int int_at(const std::string& name, int i = 0) const { return std::get<int>(at(name, i)); }
    double double_at(const std::string& name, int i = 0) const { return std::get<double>(at(name, i)); }
    const std::string& string_at(const std::string& name, int i = 0) const {
        return std::get<std::string>(at(name, i));
    }
    std::vector<std::string> strings(const std::string& name) const;

    std::set<std::string> refused;  // texts that are answered ErrValue

    OfxPropertySetHandle handle() { return reinterpret_cast<OfxPropertySetHandle>(this); }
    static PropertySet* from(OfxPropertySetHandle handle);

    // What the suite does.
    OfxStatus set(const char* name, int index, const Value& value);
    OfxStatus get(const char* name, int index, Value& value) const;

  private:
    struct Property {
        std::vector<Value> values;
        std::size_t type = 0;  // of Value
        bool any_length = false;
        Access access = kHostSets;
    };

    const Value& at(const std::string& name, int i) const;

    static constexpr std::uint32_t kMagic = 0x0f5e7000;
    std::uint32_t magic_ = kMagic;
    std::map<std::string, Property, std::less<>> properties_;
};

// A string as a host returns it: spoilt by the next call of any function of the host on the same thread.
char* lend_string(std::string text);
// Every function of every suite begins with this.
void begin_call();

const OfxPropertySuiteV1& property_suite();

}  // namespace ofxtest
