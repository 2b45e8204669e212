// The parameters of one instance of the effect: reads their values, writes those that the node changed.
//
// What only reads may be called from any thread; the rest in the actions that may set parameters.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "abi/OfxImageEffect.h"
#include "abi/OfxParam.h"
#include "parameters/ParameterHandle.h"
#include "parameters/Parameters.h"

namespace veloxa::ofx {

class ParameterSet {
  public:
    // `list` outlives the set. Parameters that the host did not make keep their defaults.
    ParameterSet(OfxImageEffectHandle effect, const ParameterList& list);

    // All values at the time, or as they are now, which is asked by the thread that may set parameters.
    // Buttons have none. Texts do not animate, and the host's own may go as its user edits while a render
    // reads: at a time they are what they were when they were last asked for as they are.
    Values values(std::optional<OfxTime> time) const;
    Value value(std::size_t n, std::optional<OfxTime> time) const;
    // The index of the parameter of this name, if there is one.
    std::optional<std::size_t> find(std::string_view name) const;

    // The values at the time, with texts as they are now.
    Values values_with_texts(OfxTime time) const;

    bool animates(std::size_t n) const;
    void delete_keys(std::size_t n) const;
    // Sets parameter n; one that is animated gets a key at the time.
    void set(std::size_t n, const Value& value, OfxTime time) const;
    void enable(std::size_t n, bool on) const;

    // Makes one undoable step of what is set while it lives.
    class Edit {
      public:
        Edit(const ParameterSet& set, const std::string& name);
        ~Edit();
        Edit(const Edit&) = delete;
        Edit& operator=(const Edit&) = delete;

      private:
        OfxParamSetHandle set_;
    };

  private:
    const ParameterList& list_;
    OfxParamSetHandle set_ = nullptr;
    std::vector<ParameterHandle> handles_;
    mutable std::mutex mutex_;
    mutable std::vector<std::string> texts_;  // by parameter
};

}  // namespace veloxa::ofx
