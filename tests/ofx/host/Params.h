// The parameters of the test host: values with keys, locked call by call, and what the suite does to them.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
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
    // Numbers, or a text; both empty for parameters that hold nothing. Keys by time take the numbers' place.
    struct Content {
        std::vector<double> numbers{};
        std::string text{};
        std::map<double, std::vector<double>> keys{};
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
    // With the keys.
    Content content() const;
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
};

class ParamSet {
  public:
    Param* find(const std::string& name) const;
    Param& get(const std::string& name) const;
    const std::vector<std::unique_ptr<Param>>& all() const { return params_; }
    Param* add(std::unique_ptr<Param> param);

    // What the plug-in sets, at a key's time if there is one: a step of its own, or part of the block that it
    // opened.
    void edit(Param& param, const Param::Content& content, const double* key);
    OfxStatus begin_edit();
    OfxStatus end_edit();
    // What was before each step.
    using Step = std::vector<std::pair<Param*, Param::Content>>;
    std::vector<Step> undo;

    std::set<std::string> refused_children;   // of pages, answered ErrValue
    std::set<std::string> refused_types;      // answered ErrUnsupported
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
