// The property sets of the test host, and what it notes of a plug-in that breaks the rules.
//
// A set knows beforehand which properties it has, of which type and length, and which of them a plug-in may
// set. Reading is safe from many threads as long as nobody sets.
#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "abi/OfxProperty.h"

namespace ofxtest {

// Noted on any thread, until they are taken.
class Notes {
  public:
    void add(const std::string& text) {
        const std::lock_guard lock(lock_);
        texts_.push_back(text);
    }
    std::vector<std::string> take() {
        const std::lock_guard lock(lock_);
        return std::exchange(texts_, {});
    }

  private:
    std::mutex lock_;
    std::vector<std::string> texts_;
};

inline Notes shown;  // "type: text" of each message, persistent ones with a star
// Whatever a plug-in does that a host may not put up with: unknown properties, wrong types, illegal moments.
inline Notes faults;
// Gives the reply back.
inline OfxStatus note_fault(const std::string& text, OfxStatus reply = kOfxStatFailed) {
    faults.add(text);
    return reply;
}

using Value = std::variant<void*, std::string, double, int>;
inline const Value kText = std::string();
using Names = std::initializer_list<const char*>;

class PropertySet {
  public:
    // A property of as many values, these by default, which a plug-in may set or not.
    void add(const std::string& name, std::vector<Value> values, bool plugin_sets = false) {
        const std::size_t type = values.at(0).index();
        properties_[name] = {std::move(values), type, false, plugin_sets};
    }
    // What a plug-in sets: properties of `n` such values each, and of any length, empty at first.
    void add_all(Names names, const Value& value, int n = 1) {
        for (const char* name : names)
            add(name, std::vector<Value>(static_cast<std::size_t>(n), value), true);
    }
    void add_lists(Names names, const Value& type) {
        for (const char* name : names) properties_[name] = {{}, type.index(), true, true};
    }

    bool has(const std::string& name) const { return properties_.count(name) != 0; }
    int int_at(const std::string& name, int i = 0) const { return at<int>(name, i); }
    double double_at(const std::string& name, int i = 0) const { return at<double>(name, i); }
    std::string string_at(const std::string& name, int i = 0) const { return at<std::string>(name, i); }
    void* pointer_at(const std::string& name) const { return at<void*>(name, 0); }
    std::vector<std::string> strings(const std::string& name) const {
        std::vector<std::string> result;
        const auto found = properties_.find(name);
        if (found == properties_.end()) return result;
        for (const Value& value : found->second.values) result.push_back(std::get<std::string>(value));
        return result;
    }

    std::set<std::string> refused;  // texts that are answered ErrValue

    OfxPropertySetHandle handle() { return reinterpret_cast<OfxPropertySetHandle>(this); }

    // What the suite does.
    OfxStatus set(const char* name, int index, const Value& value) {
        const auto found = properties_.find(name);
        if (found == properties_.end())
            return note_fault(std::string("sets unknown property ") + name, kOfxStatErrUnknown);
        Property& p = found->second;
        if (p.type != value.index() || !p.plugin_sets)
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
    OfxStatus get(const char* name, int index, Value& value) const {
        const auto found = properties_.find(name);
        if (found == properties_.end()) return kOfxStatErrUnknown;
        const Property& p = found->second;
        if (p.type != value.index())
            return note_fault(std::string("reads property of another type, ") + name, kOfxStatErrUnknown);
        if (static_cast<std::size_t>(index) >= p.values.size()) return kOfxStatErrBadIndex;
        value = p.values[static_cast<std::size_t>(index)];
        return kOfxStatOK;
    }

  private:
    struct Property {
        std::vector<Value> values;
        std::size_t type = 0;  // of Value
        bool any_length = false;
        bool plugin_sets = false;
    };

    template <class T>
    const T& at(const std::string& name, int i) const {
        return std::get<T>(properties_.at(name).values.at(static_cast<std::size_t>(i)));
    }

    std::map<std::string, Property, std::less<>> properties_;
};

// Every function of every suite begins with this.
void begin_call();

}  // namespace ofxtest
