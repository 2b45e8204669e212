// The parameters of the test host: values with keys, locked call by call, and what the suite does to them.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <shared_mutex>
#include <string>
#include <utility>
#include <vector>

#include "abi/OfxParam.h"
#include "ofx/host/PropertySet.h"

namespace ofxtest {

class ParamSet;

class Param {
  public:
    // Numbers, or a text; both empty for parameters that hold nothing.
    struct Content {
        std::vector<double> numbers;
        std::string text;
        friend bool operator==(const Content&, const Content&) = default;
    };

    // As it is described; null for a type that no host knows.
    static std::unique_ptr<Param> described(ParamSet& owner, const std::string& type,
                                            const std::string& name);
    // An instance's, at its default.
    Param(ParamSet& owner, const Param& descriptor);

    const std::string& name() const { return name_; }
    const std::string& type() const { return type_; }
    ParamSet& owner() const { return owner_; }
    bool is_text() const;
    bool is_int() const;
    bool holds_value() const { return dimension_ > 0; }
    int dimension() const { return dimension_; }
    bool enabled() const { return props.int_at(kOfxParamPropEnabled) != 0; }

    // Linear between keys, held beyond them; Booleans, choices and texts step. Without keys the value.
    Content at(double time) const;
    Content value() const { return at(0.0); }
    // Forgets the keys.
    void assign(const Content& content);
    void set_key(double time, std::vector<double> numbers);

    OfxParamHandle handle() { return reinterpret_cast<OfxParamHandle>(this); }

    PropertySet props;

  private:
    Param(ParamSet& owner, std::string type, std::string name, int dimension);

    ParamSet& owner_;
    std::string type_;
    std::string name_;
    int dimension_;
    mutable std::shared_mutex lock_;
    Content content_;
    std::map<double, std::vector<double>> keys_;
};

class ParamSet {
  public:
    Param* find(const std::string& name) const;
    Param& get(const std::string& name) const;
    const std::vector<std::unique_ptr<Param>>& all() const { return params_; }
    Param* add(std::unique_ptr<Param> param);

    // What the plug-in sets: a step of its own, or part of the block that it opened.
    void edit(Param& param, const Param::Content& content);
    OfxStatus begin_edit(const std::string& name);
    OfxStatus end_edit();
    // Steps by name, each with the values before it.
    struct Step {
        std::string name;
        std::vector<std::pair<Param*, Param::Content>> before;
    };
    std::vector<Step> undo;

    std::vector<std::string> refused_types;   // answered ErrUnsupported
    std::function<void(Param&)> when_edited;  // tells the plug-in of its own change
    bool describing = false;
    PropertySet* effect_props = nullptr;

    OfxParamSetHandle handle() { return reinterpret_cast<OfxParamSetHandle>(this); }

  private:
    std::vector<std::unique_ptr<Param>> params_;
    int open_blocks_ = 0;
};

const OfxParameterSuiteV1& parameter_suite();

}  // namespace ofxtest
